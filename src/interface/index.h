// The one place where 32-bit indices and sizes become each other.
//
// Callers' arrays, Eigen's matrices and the exported records hold indices as int; the standard
// library's containers are subscripted by std::size_t. So a loop reads
//
//   region[asIndex(vertex)] = asInt(roots.size());
#ifndef QELM_INTERFACE_INDEX_H
#define QELM_INTERFACE_INDEX_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <type_traits>

namespace qelm {

/// A signed index, 0 or more, as the subscript of a container.
template <class Signed>
constexpr std::size_t asIndex(Signed index) {
  static_assert(std::is_integral_v<Signed> && std::is_signed_v<Signed>);
  return static_cast<std::size_t>(index);
}

/// A subscript or size that is known to fit, as an int.
template <class Integer>
constexpr std::int32_t asInt(Integer index) {
  static_assert(std::is_integral_v<Integer>);
  return static_cast<std::int32_t>(index);
}

/// `count` as an int. Throws std::bad_alloc if it is more than an int can index: Eigen and the
/// exported records would go on with a number that has wrapped around.
inline int indexable(std::int64_t count) {
  if (count > std::numeric_limits<int>::max()) throw std::bad_alloc();
  return asInt(count);
}

}  // namespace qelm

#endif  // QELM_INTERFACE_INDEX_H
