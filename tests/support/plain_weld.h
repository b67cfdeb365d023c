// Welding in its plainest forms, as oracles and as what benchmarks compare with.
#ifndef QELM_TESTS_SUPPORT_PLAIN_WELD_H
#define QELM_TESTS_SUPPORT_PLAIN_WELD_H

#include <cstdint>
#include <vector>

namespace qelm::test {

struct Welded {
  std::vector<double> vertices;
  std::vector<std::int32_t> triangles;
  std::vector<std::int32_t> map;
};

/// Compares every pair of vertices.
Welded allPairsWeld(const std::vector<double>& vertices, const std::vector<std::int32_t>& triangles,
                    double tolerance);

/// One radius query for each vertex into a vector of results, on a kd-tree of all
/// vertices that is built twice, and a std::set of triangle keys.
Welded plainTreeWeld(const std::vector<double>& vertices,
                     const std::vector<std::int32_t>& triangles, double tolerance);

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_PLAIN_WELD_H
