#include "solve/field_bounds.h"

#include "interface/index.h"
#include "mesh/disjoint_sets.h"

namespace qelm {

FieldBounds boundsOf(const SparseBlock& freeFree) {
  const auto count = asIndex(freeFree.cols());
  DisjointSets sets(count);
  for (Eigen::Index c = 0; c < freeFree.outerSize(); ++c) {
    // The matrix is symmetric: its strictly upper triangle is enough.
    for (SparseBlock::InnerIterator entry(freeFree, c); entry && entry.row() < c; ++entry) {
      sets.unite(asInt(entry.row()), asInt(c));
    }
  }
  FieldBounds bounds;
  bounds.region.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto vertex = asInt(i);
    const std::int32_t root = sets.root(vertex);
    bounds.region[i] = root == vertex ? bounds.regionCount++ : bounds.region[asIndex(root)];
  }
  return bounds;
}

}  // namespace qelm
