#include "mesh/edge_sums.h"

#include <utility>

namespace qelm {
namespace {

/// Makes an array longer; what is new in it is not set.
template <class T>
void lengthen(std::unique_ptr<T[]>& array, std::size_t size, std::size_t capacity) {
  auto longer = std::make_unique_for_overwrite<T[]>(capacity);
  std::copy_n(array.get(), size, longer.get());
  array = std::move(longer);
}

}  // namespace

// -0.0 is the number to start a sum from: -0.0 + x has the bits of x for every x,
// where 0.0 + -0.0 has not.
EdgeSums::EdgeSums(std::int32_t t, std::int32_t n, std::span<const std::int32_t> triangles)
    : t_(t), owners_(static_cast<std::size_t>(n - t), Owner{-0.0, 0, 0, 0}) {
  const auto count = [&](std::int32_t a, std::int32_t b) {
    const std::int32_t higher = std::max(a, b);
    if (higher >= t) ++owners_[static_cast<std::size_t>(higher - t)].room;
  };
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    count(triangles[j], triangles[j + 1]);
    count(triangles[j + 1], triangles[j + 2]);
    count(triangles[j], triangles[j + 2]);
  }
  // Inner edges come twice; a boundary leaves two at a vertex that come once.
  std::size_t size = 0;
  for (Owner& owner : owners_) {
    owner.room = owner.room / 2 + 1;
    owner.start = size;
    size += static_cast<std::size_t>(owner.room);
  }
  reserve(size);
  size_ = size;
}

void EdgeSums::reserve(std::size_t capacity) {
  lengthen(neighbours_, size_, capacity);
  lengthen(sums_, size_, capacity);
  capacity_ = capacity;
}

/// Behind all others; the old list's room is lost.
void EdgeSums::moveToLargerList(Owner& owner) {
  const std::int32_t room = 2 * owner.room;
  const std::size_t size = size_ + static_cast<std::size_t>(room);
  if (size > capacity_) reserve(size + size / 2);
  std::copy_n(neighbours_.get() + owner.start, owner.length, neighbours_.get() + size_);
  std::copy_n(sums_.get() + owner.start, owner.length, sums_.get() + size_);
  owner.start = size_;
  owner.room = room;
  size_ = size;
}

void EdgeSums::sortLists() {
  for (Owner& owner : owners_) {
    if (owner.length <= kSearched) {
      sortShortList(owner);
    } else {
      sortLongList(owner);
    }
  }
}

/// By insertion: three or so, all different.
void EdgeSums::sortShortList(const Owner& owner) {
  std::int32_t* const list = neighbours_.get() + owner.start;
  double* const sums = sums_.get() + owner.start;
  for (std::int32_t i = 1; i < owner.length; ++i) {
    const std::int32_t neighbour = list[i];
    const double sum = sums[i];
    std::int32_t k = i;
    for (; k > 0 && list[k - 1] > neighbour; --k) {
      list[k] = list[k - 1];
      sums[k] = sums[k - 1];
    }
    list[k] = neighbour;
    sums[k] = sum;
  }
}

/// Contributions to one entry stay in their order, and are added up in it.
void EdgeSums::sortLongList(Owner& owner) {
  std::int32_t* const list = neighbours_.get() + owner.start;
  double* const sums = sums_.get() + owner.start;
  std::vector<std::pair<std::int32_t, double>> entries;
  entries.reserve(static_cast<std::size_t>(owner.length));
  for (std::int32_t i = 0; i < owner.length; ++i) entries.emplace_back(list[i], sums[i]);
  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  owner.length = 0;
  for (const auto& [neighbour, sum] : entries) {
    if (owner.length > 0 && list[owner.length - 1] == neighbour) {
      sums[owner.length - 1] += sum;
      continue;
    }
    list[owner.length] = neighbour;
    sums[owner.length++] = sum;
  }
}

}  // namespace qelm
