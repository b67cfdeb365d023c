#include "mesh/edge_sums.h"

#include <new>

namespace qelm {

// -0.0 is the number to start a sum from: -0.0 + x has the bits of x for every x,
// where 0.0 + -0.0 has not.
EdgeSums::EdgeSums(std::int32_t t, std::int32_t n, std::span<const std::int32_t> triangles)
    : t_(t), n_(n), owners_(static_cast<std::size_t>(n - t), Owner{-0.0, 0}) {
  const auto count = [&](std::int32_t a, std::int32_t b) {
    const std::int32_t higher = std::max(a, b);
    if (higher >= t) ++owners_[static_cast<std::size_t>(higher - t)].end;
  };
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    count(triangles[j], triangles[j + 1]);
    count(triangles[j + 1], triangles[j + 2]);
    count(triangles[j], triangles[j + 2]);
  }
  std::size_t size = 0;
  for (Owner& owner : owners_) {
    const std::size_t contributions = owner.end;
    owner.end = size;
    size += contributions;
  }
  setLength(neighbours_, size);
  setLength(sums_, size);
}

template <class T>
void EdgeSums::setLength(Array<T>& array, std::size_t length) {
  // One at least: of nothing the C library may make a null pointer.
  void* const moved = std::realloc(array.get(), std::max<std::size_t>(length, 1) * sizeof(T));
  if (moved == nullptr) throw std::bad_alloc();
  static_cast<void>(array.release());
  array.reset(static_cast<T*>(moved));
}

// In place: what is read is never behind what is written. The last entry that was made
// with a neighbour is this owner's if it is not before the owner's first one.
void EdgeSums::addUp() {
  std::vector<std::size_t> lastEntry(static_cast<std::size_t>(n_) , 0);
  std::int32_t* const neighbours = neighbours_.get();
  double* const sums = sums_.get();
  std::size_t read = 0;
  std::size_t size = 1;  // the last entry's number and one
  for (Owner& owner : owners_) {
    const std::size_t first = size;
    for (; read < owner.end; ++read) {
      const std::int32_t neighbour = neighbours[read];
      const double value = sums[read];
      std::size_t& entry = lastEntry[static_cast<std::size_t>(neighbour)];
      const bool isNew = entry < first;
      const std::size_t place = isNew ? size : entry;
      entry = place;
      const double before = isNew ? -0.0 : sums[place - 1];
      neighbours[place - 1] = neighbour;
      sums[place - 1] = before + value;
      size += isNew ? 1 : 0;
    }
    owner.end = size - 1;
  }
  setLength(neighbours_, size - 1);
  setLength(sums_, size - 1);
}

}  // namespace qelm
