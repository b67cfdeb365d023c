// Arrays whose elements start without a value, as those of a plain `new`: for large ones that are
// filled right away. A std::vector would fill them with zeros first.
#ifndef QELM_INTERFACE_UNSET_H
#define QELM_INTERFACE_UNSET_H

#include <memory>
#include <new>
#include <type_traits>
#include <vector>

namespace qelm {

template <class T>
struct UnsetAllocator : std::allocator<T> {
  static_assert(std::is_trivially_default_constructible_v<T>);
  template <class U>
  struct rebind {
    using other = UnsetAllocator<U>;
  };
  /// For resize() and a vector of a given size. With a value, std::allocator_traits constructs.
  void construct(T* element) { ::new (static_cast<void*>(element)) T; }
};

template <class T>
using UnsetVector = std::vector<T, UnsetAllocator<T>>;

}  // namespace qelm

#endif  // QELM_INTERFACE_UNSET_H
