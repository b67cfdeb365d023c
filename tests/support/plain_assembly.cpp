#include "support/plain_assembly.h"

#include <algorithm>
#include <cstddef>

#include "support/plain_element.h"

namespace qelm::test {

PlainAssembly plainAssembly(int t, int n, const std::vector<double>& coordinates,
                            const std::vector<std::int32_t>& triangles) {
  PlainAssembly plain;
  plain.vertices = std::make_shared<const std::vector<double>>(coordinates);
  plain.triangles = std::make_shared<const std::vector<std::int32_t>>(triangles);
  std::vector<Eigen::Triplet<double, int>> triplets;
  triplets.reserve(3 * triangles.size());
  std::vector<bool> used(static_cast<std::size_t>(n));
  const auto point = [&](int v) { return coordinates.data() + 3 * static_cast<std::size_t>(v); };
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const int i0 = triangles[j];
    const int i1 = triangles[j + 1];
    const int i2 = triangles[j + 2];
    if (i0 == i1 || i1 == i2 || i0 == i2) {
      plain.status = 23;
      return plain;
    }
    for (const int v : {i0, i1, i2}) used[static_cast<std::size_t>(v)] = true;
    const PlainStiffness e = plainStiffness(point(i0), point(i1), point(i2));
    triplets.emplace_back(i0, i1, e.k01);
    triplets.emplace_back(i1, i0, e.k01);
    triplets.emplace_back(i1, i2, e.k12);
    triplets.emplace_back(i2, i1, e.k12);
    triplets.emplace_back(i0, i2, e.k02);
    triplets.emplace_back(i2, i0, e.k02);
    triplets.emplace_back(i0, i0, e.k00);
    triplets.emplace_back(i1, i1, e.k11);
    triplets.emplace_back(i2, i2, e.k22);
  }
  if (std::find(used.begin(), used.end(), false) != used.end()) {
    plain.status = 24;
    return plain;
  }
  SparseBlock k(n, n);
  k.setFromTriplets(triplets.begin(), triplets.end());
  plain.freeFree = k.block(t, t, n - t, n - t);
  plain.freeFixed = k.block(t, 0, n - t, t);
  return plain;
}

}  // namespace qelm::test
