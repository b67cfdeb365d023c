#include "mesh/numbering.h"

#include <cstddef>
#include <iterator>

namespace qelm {
namespace {

/// Goes over indices of input vertices and gives their places. A vector made from such
/// iterators is not filled with zeros first.
class PlaceIterator {
 public:
  using iterator_category = std::random_access_iterator_tag;
  using value_type = std::int32_t;
  using difference_type = std::ptrdiff_t;
  using pointer = const std::int32_t*;
  using reference = const std::int32_t&;

  PlaceIterator(const std::int32_t* index, const VertexNumbering& numbering)
      : index_(index), place_(numbering.place.data()) {}

  reference operator*() const { return place_[*index_]; }
  PlaceIterator& operator++() {
    ++index_;
    return *this;
  }
  friend difference_type operator-(const PlaceIterator& a, const PlaceIterator& b) {
    return a.index_ - b.index_;
  }
  friend bool operator==(const PlaceIterator& a, const PlaceIterator& b) {
    return a.index_ == b.index_;
  }

 private:
  const std::int32_t* index_;
  const std::int32_t* place_;
};

}  // namespace

bool isPrescribed(std::int32_t tag) { return tag == 1 || tag == 2 || tag == 3; }

// Free vertices fill the back block from its end, so their order is reversed:
// system index n-1-k belongs to the k-th free vertex. This is on purpose;
// stored fields and callers' tables rely on it.
VertexNumbering numberVertices(std::span<const std::int32_t> tags) {
  const auto n = static_cast<std::int32_t>(tags.size());
  VertexNumbering numbering;
  numbering.place.resize(tags.size());
  numbering.order.resize(tags.size());
  std::int32_t front = 0;
  for (std::int32_t i = 0; i < n; ++i) {
    const auto input = static_cast<std::size_t>(i);
    const std::int32_t freeBefore = i - front;
    const std::int32_t system = isPrescribed(tags[input]) ? front++ : n - 1 - freeBefore;
    numbering.place[input] = system;
    numbering.order[static_cast<std::size_t>(system)] = i;
  }
  numbering.taggedCount = front;
  return numbering;
}

std::vector<double> reorderCoordinates(std::span<const double> vertices,
                                       const VertexNumbering& numbering) {
  std::vector<double> reordered(vertices.size());
  for (std::size_t i = 0; i < numbering.place.size(); ++i) {
    const auto s = static_cast<std::size_t>(numbering.place[i]);
    for (std::size_t k = 0; k < 3; ++k) reordered[3 * s + k] = vertices[3 * i + k];
  }
  return reordered;
}

std::vector<std::int32_t> renumberTriangles(std::span<const std::int32_t> triangles,
                                            const VertexNumbering& numbering) {
  return {PlaceIterator(triangles.data(), numbering),
          PlaceIterator(triangles.data() + triangles.size(), numbering)};
}

}  // namespace qelm
