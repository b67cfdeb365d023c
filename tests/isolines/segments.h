// Isoline segments as tests look at them.
#ifndef QELM_TESTS_ISOLINES_SEGMENTS_H
#define QELM_TESTS_ISOLINES_SEGMENTS_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "interface/mesh_system.h"
#include "isolines/plain_isolines.h"
#include "qelm.h"
#include "support/compare.h"
#include "support/meshes.h"

namespace qelm::test {

struct Segments {
  std::vector<double> points;
  std::vector<std::int32_t> edges;
  std::int64_t count = 0;

  Point end(std::int64_t segment, int which) const {
    const auto rows = static_cast<std::size_t>(2 * count);
    const auto row = static_cast<std::size_t>(segment + which * count);
    return {points[row], points[row + rows], points[row + 2 * rows]};
  }
};

inline Segments cut(const MeshSystem* system, const Field& field,
                    const std::vector<double>& levels) {
  IsoPointMatrix* points = nullptr;
  IsoEdgeMatrix* edges = nullptr;
  qelisoline(system, field.data(), static_cast<int>(levels.size()), levels.data(), &points, &edges);
  Segments result;
  EXPECT_EQ(points->cols, 3);
  EXPECT_EQ(edges->cols, 2);
  EXPECT_EQ(points->rows, 2 * edges->rows);
  result.count = edges->rows;
  if (result.count == 0) {
    EXPECT_EQ(points->data, nullptr);
    EXPECT_EQ(edges->data, nullptr);
  } else {
    result.points.assign(points->data, points->data + 3 * points->rows);
    result.edges.assign(edges->data, edges->data + 2 * edges->rows);
  }
  qelfreeisoline(points, edges);
  return result;
}

/// A handle's mesh alone, its arrays exactly as given.
inline MeshSystem meshOnly(std::vector<double> vertices, std::vector<std::int32_t> triangles) {
  MeshSystem system;
  system.vertexCount = static_cast<std::int64_t>(vertices.size() / 3);
  system.vertices = std::make_shared<const std::vector<double>>(std::move(vertices));
  system.triangles = std::make_shared<const std::vector<std::int32_t>>(std::move(triangles));
  return system;
}

/// The bits of the plain form.
inline void expectPlain(const MeshSystem& system, const Field& field,
                        const std::vector<double>& levels) {
  const Segments actual = cut(&system, field, levels);
  const PlainIsolines plain = plainIsolines(system, field, levels);
  ASSERT_EQ(actual.edges, plain.edges);
  ASSERT_TRUE(sameBits(actual.points, plain.points));
}

}  // namespace qelm::test

#endif  // QELM_TESTS_ISOLINES_SEGMENTS_H
