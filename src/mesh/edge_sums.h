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
/// An entry belongs to the higher one of its edge's vertices, its owner, in a list with
/// as much room as edges of triangles can need. It takes 36 bytes for each triangle
/// and 20 for each free vertex.
class EdgeSums {
 public:
  /// n vertices, the first t of them tagged; 3m indices in 0 .. n-1.
  EdgeSums(std::int32_t t, std::int32_t n, std::span<const std::int32_t> triangles);

  /// To K_ab, a != b. Nothing if both are tagged.
  void add(std::int32_t a, std::int32_t b, double value) {
    const std::int32_t owner = std::max(a, b);
    if (owner < t_) return;
    const auto v = static_cast<std::size_t>(owner - t_);
    addToList(start_[v], length_[v], std::min(a, b), value);
  }

  /// To K_vv. Nothing if v is tagged.
  void addToDiagonal(std::int32_t v, double value) {
    if (v >= t_) diagonal_[static_cast<std::size_t>(v - t_)] += value;
  }

  /// Once, when all is added: brings the others of every list into ascending order.
  void sortLists();

  std::size_t ownerCount() const { return length_.size(); }
  /// Owner t + v's neighbours of lower index, and the entries with them.
  std::span<const std::int32_t> lowerNeighbours(std::size_t v) const {
    return {neighbours_.get() + start_[v], static_cast<std::size_t>(length_[v])};
  }
  std::span<const double> sums(std::size_t v) const {
    return {sums_.get() + start_[v], static_cast<std::size_t>(length_[v])};
  }
  double diagonal(std::size_t v) const { return diagonal_[v]; }

 private:
  /// Only so many of a list are searched: the lists are short, but that of a vertex
  /// with many triangles would take quadratic time. Neighbours beyond are stored
  /// again with every contribution, and added up in sortLists().
  static constexpr std::int32_t kSearched = 16;

  void addToList(std::size_t start, std::int32_t& length, std::int32_t neighbour, double value) {
    std::int32_t* const list = neighbours_.get() + start;
    const std::int32_t searched = std::min(length, kSearched);
    std::int32_t k = 0;
    while (k < searched && list[k] != neighbour) ++k;
    if (k < searched) {
      sums_[start + static_cast<std::size_t>(k)] += value;
      return;
    }
    list[length] = neighbour;
    sums_[start + static_cast<std::size_t>(length)] = value;
    ++length;
  }
  void sortShortList(std::size_t v);
  void sortLongList(std::size_t v);

  std::int32_t t_;
  std::vector<std::size_t> start_;    // n - t
  std::vector<std::int32_t> length_;  // n - t
  std::vector<double> diagonal_;      // n - t
  std::unique_ptr<std::int32_t[]> neighbours_;
  std::unique_ptr<double[]> sums_;
};

}  // namespace qelm

#endif  // QELM_MESH_EDGE_SUMS_H
