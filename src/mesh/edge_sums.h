// Sums of element stiffnesses over the edges and vertices of a mesh.
#ifndef QELM_MESH_EDGE_SUMS_H
#define QELM_MESH_EDGE_SUMS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

#include "interface/compiler.h"
#include "interface/index.h"

namespace qelm {

/// The strictly lower half of the free rows of a symmetric matrix, and their diagonal,
/// while contributions are added. Each entry's sum starts from its first contribution
/// and takes the others in the order in which they come; that order decides the bits.
///
/// An entry belongs to the higher one of its edge's vertices, its owner. Contributions
/// are first put down one after the other with their owner, and added up owner by owner
/// at the end: where a search for each one's entry as it comes would jump about in
/// memory and take branches that nobody can guess, this does neither. It needs 36
/// bytes for each triangle until then, and 12 for each edge afterwards; 16 for each
/// vertex.
class EdgeSums {
 public:
// Without gaps: a third more of them in the cache, and in memory.
#pragma pack(push, 4)
  struct Entry {
    std::int32_t neighbour;
    double sum;
  };
#pragma pack(pop)

  /// Of triangles in system order, the first t vertices tagged: 3m indices, and for each
  /// of n vertices how many sides of triangles have it as their higher end.
  EdgeSums(std::int32_t t, std::span<const std::int32_t> triangles,
           const std::vector<std::uint32_t>& higherEnds);

  /// To K_ab, an edge of a triangle: for each triangle once. Nothing if both are tagged.
  /// With a == b it takes the place that was counted for it, and the sums mean nothing.
  void add(std::int32_t a, std::int32_t b, double value) {
    const std::int32_t higher = std::max(a, b);
    if (higher < t_) return;
    const std::size_t place = owners_[asIndex(higher)].end++;
    entries_[place] = {std::min(a, b), value};
  }

  /// To K_vv: an area times a square, so never -0.0.
  void addToDiagonal(std::int32_t v, double value) { owners_[asIndex(v)].diagonal += value; }

  /// Whether something was added to the diagonal of every vertex.
  bool haveEveryVertex() const;

  /// Have the memory ready that adding to v's entries needs soon: first what is known
  /// of v, then the place of its contributions.
  void prefetchOwner(std::int32_t v) const { prefetchToWrite(&owners_[asIndex(v)]); }
  void prefetchList(std::int32_t v) const {
    prefetchToWrite(entries_.get() + owners_[asIndex(v)].end);
  }

  /// Whether triangles join vertices that lie far apart in memory, as in random order.
  /// Then it pays to have memory ready before it is used; it costs a little elsewhere.
  bool isScattered() const { return isScattered_; }

  /// How many entries ahead the memory that an entry needs is asked for then.
  static constexpr std::size_t kAhead = 24;

  struct Neighbour {
    std::uint32_t lastEntry = 0;  ///< from 1 on: the last one made with this neighbour
    std::int32_t owners = 0;      ///< how many list it
  };
  struct Counts {
    std::vector<Neighbour> neighbours;         ///< for each vertex
    std::vector<std::int32_t> freeNeighbours;  ///< for each free vertex, how many it lists
  };
  /// Once, when all is added: makes one entry of the contributions to it.
  Counts addUp();

  /// Of all vertices, one after the other.
  std::span<const Entry> entries() const {
    return {entries_.get(), owners_.empty() ? 0 : owners_.back().end};
  }
  /// Of vertex v: the neighbours all different, in any order, which may be changed.
  std::span<Entry> entries(std::int32_t v) {
    return {entries_.get() + start(v), entries_.get() + owners_[asIndex(v)].end};
  }
  std::span<const Entry> entries(std::int32_t v) const {
    return {entries_.get() + start(v), entries_.get() + owners_[asIndex(v)].end};
  }
  double diagonal(std::int32_t v) const { return owners_[asIndex(v)].diagonal; }

 private:
  struct Owner {
    double diagonal;
    std::size_t end;  ///< of its entries, which begin where the last owner's end
  };
  struct Free {
    void operator()(void* block) const { std::free(block); }
  };
  std::size_t start(std::int32_t v) const { return v == 0 ? 0 : owners_[asIndex(v) - 1].end; }
  void setLength(std::size_t length);
  template <bool kScattered>
  Counts addUpLists();

  std::int32_t t_;
  bool isScattered_;
  std::vector<Owner> owners_;               // n; the first t of them own nothing
  std::unique_ptr<Entry[], Free> entries_;  // can be made shorter where it is
};

}  // namespace qelm

#endif  // QELM_MESH_EDGE_SUMS_H
