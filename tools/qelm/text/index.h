// The one place where 32-bit indices and sizes become each other.
//
// Meshes and the library's arrays hold indices as int; the standard library's containers are
// subscripted by std::size_t. So a loop reads
//
//   used[asIndex(vertex)] = true;
//   list.push_back(asInt(points.size()));
#ifndef QELM_TOOLS_INDEX_H
#define QELM_TOOLS_INDEX_H

#include <cstddef>
#include <type_traits>

namespace qelm::tool {

/// A signed index, 0 or more, as the subscript of a container.
template <class Signed>
constexpr std::size_t asIndex(Signed index) {
  static_assert(std::is_integral_v<Signed> && std::is_signed_v<Signed>);
  return static_cast<std::size_t>(index);
}

/// A subscript or size that is known to fit, as an int: readers refuse larger meshes.
template <class Integer>
constexpr int asInt(Integer index) {
  static_assert(std::is_integral_v<Integer>);
  return static_cast<int>(index);
}

}  // namespace qelm::tool

#endif
