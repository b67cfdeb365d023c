// Welding beside the definition that compares every pair.
#include "fuzz/input.h"
#include "fuzz/require.h"
#include "qelm.h"
#include "support/plain_weld.h"

namespace {

using qelm::fuzz::require;
using qelm::fuzz::sameBits;

qelm::test::Welded weld(const std::vector<double>& vertices,
                        const std::vector<std::int32_t>& triangles, double tolerance) {
  qelm::test::Welded welded = {vertices, triangles, std::vector<std::int32_t>(vertices.size() / 3)};
  int vertexCount = -1;
  int triangleCount = -1;
  require(qelmWeld(static_cast<int>(vertices.size() / 3), vertices.data(),
                   static_cast<int>(triangles.size() / 3), triangles.data(), tolerance,
                   welded.vertices.data(), welded.triangles.data(), welded.vertexMap.data(),
                   &vertexCount, &triangleCount) == 0);
  welded.vertices.resize(3 * static_cast<std::size_t>(vertexCount));
  welded.triangles.resize(3 * static_cast<std::size_t>(triangleCount));
  return welded;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::fuzz::Input input(data, size);
  const int n = input.takeInt(1, 60);
  const double tolerance = input.takeDouble();
  if (tolerance < 0) return 0;
  const std::vector<double> vertices = input.takeDoubles(3 * static_cast<std::size_t>(n));
  const auto m = static_cast<std::size_t>(input.takeInt(0, 40));
  const std::vector<std::int32_t> triangles = input.takeInts(3 * m, 0, n - 1);
  const qelm::test::Welded welded = weld(vertices, triangles, tolerance);
  const qelm::test::Welded plain = qelm::test::allPairsWeld(vertices, triangles, tolerance);
  require(sameBits(welded.vertices, plain.vertices));
  require(welded.triangles == plain.triangles);
  require(welded.vertexMap == plain.vertexMap);
  return 0;
}
