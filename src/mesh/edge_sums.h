// Sums of element stiffnesses over the edges and vertices of a mesh.
#ifndef QELM_MESH_EDGE_SUMS_H
#define QELM_MESH_EDGE_SUMS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace qelm {

/// The strictly lower half of the free rows of a symmetric matrix, and their diagonal,
/// while contributions are added. Each entry's sum starts from its first contribution
/// and takes the others in the order in which they come; that order decides the bits.
///
/// An entry belongs to the higher one of its edge's vertices, its owner, which has a
/// list of its entries. Where no edge has a third triangle and no vertex a third edge
/// with one triangle only, there is room for all from the start: 18 bytes for each
/// triangle and 36 for each free vertex.
class EdgeSums {
 public:
  /// n vertices, the first t of them tagged; 3m indices in 0 .. n-1.
  EdgeSums(std::int32_t t, std::int32_t n, std::span<const std::int32_t> triangles);

  /// To K_ab, a != b. Nothing if both are tagged.
  void add(std::int32_t a, std::int32_t b, double value) {
    const std::int32_t higher = std::max(a, b);
    if (higher < t_) return;
    addToList(owners_[static_cast<std::size_t>(higher - t_)], std::min(a, b), value);
  }

  /// To K_vv. Nothing if v is tagged.
  void addToDiagonal(std::int32_t v, double value) {
    if (v >= t_) owners_[static_cast<std::size_t>(v - t_)].diagonal += value;
  }

  /// Have the memory ready that adding to v's entries needs soon: first what is known
  /// of v, then the entries.
  void prefetchOwner([[maybe_unused]] std::int32_t v) const {
#if defined(__GNUC__)
    if (v >= t_) __builtin_prefetch(&owners_[static_cast<std::size_t>(v - t_)], 1);
#endif
  }
  void prefetchList([[maybe_unused]] std::int32_t v) const {
#if defined(__GNUC__)
    if (v < t_) return;
    const std::size_t start = owners_[static_cast<std::size_t>(v - t_)].start;
    __builtin_prefetch(neighbours_.get() + start, 1);
    __builtin_prefetch(sums_.get() + start, 1);
#endif
  }

  /// Once, when all is added: brings the neighbours in every list into ascending order.
  void sortLists();

  std::size_t ownerCount() const { return owners_.size(); }
  /// Owner t + v's neighbours of lower index, and the entries with them.
  std::span<const std::int32_t> lowerNeighbours(std::size_t v) const {
    return {neighbours_.get() + owners_[v].start, static_cast<std::size_t>(owners_[v].length)};
  }
  std::span<const double> sums(std::size_t v) const {
    return {sums_.get() + owners_[v].start, static_cast<std::size_t>(owners_[v].length)};
  }
  double diagonal(std::size_t v) const { return owners_[v].diagonal; }

 private:
  /// Only so many of a list are searched: the lists are short, but that of a vertex
  /// with many triangles would take quadratic time. Neighbours beyond are stored
  /// again with every contribution, and added up in sortLists().
  static constexpr std::int32_t kSearched = 16;

  struct Owner {
    double diagonal;
    std::size_t start;  ///< of its list in neighbours_ and sums_
    std::int32_t length;
    std::int32_t room;
  };

  void addToList(Owner& owner, std::int32_t neighbour, double value) {
    const std::int32_t* const list = neighbours_.get() + owner.start;
    const std::int32_t searched = std::min(owner.length, kSearched);
    std::int32_t k = 0;
    while (k < searched && list[k] != neighbour) ++k;
    if (k < searched) {
      sums_[owner.start + static_cast<std::size_t>(k)] += value;
    } else {
      append(owner, neighbour, value);
    }
  }
  void append(Owner& owner, std::int32_t neighbour, double value) {
    if (owner.length == owner.room) moveToLargerList(owner);
    const std::size_t place = owner.start + static_cast<std::size_t>(owner.length++);
    neighbours_[place] = neighbour;
    sums_[place] = value;
  }
  void moveToLargerList(Owner& owner);
  void reserve(std::size_t capacity);
  void sortShortList(const Owner& owner);
  void sortLongList(Owner& owner);

  std::int32_t t_;
  std::vector<Owner> owners_;  // n - t
  std::unique_ptr<std::int32_t[]> neighbours_;
  std::unique_ptr<double[]> sums_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace qelm

#endif  // QELM_MESH_EDGE_SUMS_H
