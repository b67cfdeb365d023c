// Calls qelmWeld with guard words after every output array.
#ifndef QELM_TESTS_SUPPORT_WELD_H
#define QELM_TESTS_SUPPORT_WELD_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "qelm.h"
#include "support/plain_weld.h"

namespace qelm::test {

constexpr int kUnwrittenInt = -777;
constexpr double kUnwrittenDouble = -777.25;

/// What is beyond the count must be what was there before.
template <class T>
void expectUnwrittenFrom(std::size_t used, const std::vector<T>& array, T unwritten,
                         const char* name) {
  for (std::size_t i = used; i < array.size(); ++i) {
    ASSERT_EQ(array[i], unwritten) << name << " was written at " << i << ", past " << used;
  }
}

/// The library's result, cut to the reported counts.
inline Welded weld(const std::vector<double>& vertices, const std::vector<std::int32_t>& triangles,
                   double tolerance) {
  constexpr std::size_t kGuards = 8;
  std::vector<double> keptVertices(vertices.size() + kGuards, kUnwrittenDouble);
  std::vector<std::int32_t> keptTriangles(triangles.size() + kGuards, kUnwrittenInt);
  std::vector<std::int32_t> map(vertices.size() / 3 + kGuards, kUnwrittenInt);
  int vertexCount = kUnwrittenInt;
  int triangleCount = kUnwrittenInt;
  const int status =
      qelmWeld(static_cast<int>(vertices.size() / 3), vertices.data(),
               static_cast<int>(triangles.size() / 3), triangles.data(), tolerance,
               keptVertices.data(), keptTriangles.data(), map.data(), &vertexCount, &triangleCount);
  EXPECT_EQ(status, 0);
  const auto usedVertices = 3 * static_cast<std::size_t>(vertexCount);
  const auto usedTriangles = 3 * static_cast<std::size_t>(triangleCount);
  expectUnwrittenFrom(usedVertices, keptVertices, kUnwrittenDouble, "weldedVertices");
  expectUnwrittenFrom(usedTriangles, keptTriangles, kUnwrittenInt, "weldedTriangles");
  expectUnwrittenFrom(vertices.size() / 3, map, kUnwrittenInt, "vertexMap");
  keptVertices.resize(usedVertices);
  keptTriangles.resize(usedTriangles);
  map.resize(vertices.size() / 3);
  return {keptVertices, keptTriangles, map};
}

/// Vertices on the x axis.
inline std::vector<double> onALine(const std::vector<double>& xs) {
  std::vector<double> vertices;
  for (const double x : xs) vertices.insert(vertices.end(), {x, 0, 0});
  return vertices;
}

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_WELD_H
