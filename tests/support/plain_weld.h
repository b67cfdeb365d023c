// Welding in its plainest forms. The library must give the same result however it
// gets there.
#ifndef QELM_TESTS_SUPPORT_PLAIN_WELD_H
#define QELM_TESTS_SUPPORT_PLAIN_WELD_H

#include <cstdint>
#include <span>
#include <vector>

namespace qelm::test {

struct Welded {
  std::vector<double> vertices;
  std::vector<std::int32_t> triangles;
  std::vector<std::int32_t> vertexMap;

  bool operator==(const Welded&) const = default;
};

/// One radius query per vertex into a vector, a node-based set of triangles. The
/// tree bounds branches with rounding errors of its own, so at distances within a
/// few ulps of the tolerance it may miss a pair.
Welded plainWeld(std::span<const double> vertices, std::span<const std::int32_t> triangles,
                 double tolerance);

/// Every pair compared: the definition.
Welded allPairsWeld(std::span<const double> vertices, std::span<const std::int32_t> triangles,
                    double tolerance);

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_PLAIN_WELD_H
