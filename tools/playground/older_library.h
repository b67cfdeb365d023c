// Debian's Emscripten comes with a C++ library that lacks some of C++20. These stand in
// for it in the module for pages, included before every source; nothing else sees them.
#ifndef QELM_PLAYGROUND_OLDER_LIBRARY_H
#define QELM_PLAYGROUND_OLDER_LIBRARY_H

#include <cstddef>
#include <memory>
#include <type_traits>
#include <version>

namespace std {

#ifndef __cpp_lib_bit_cast
template <class To, class From>
constexpr To bit_cast(const From& from) noexcept {
  return __builtin_bit_cast(To, from);
}
#endif

#ifndef __cpp_lib_smart_ptr_for_overwrite
template <class Array>
unique_ptr<Array> make_unique_for_overwrite(size_t size) {
  return unique_ptr<Array>(new remove_extent_t<Array>[size]);
}
#endif

#ifndef __cpp_lib_ranges
namespace ranges {
template <class One, class Other>
constexpr bool equal(const One& one, const Other& other) {
  auto a = one.begin();
  auto b = other.begin();
  for (; a != one.end() && b != other.end(); ++a, ++b)
    if (!(*a == *b)) return false;
  return a == one.end() && b == other.end();
}
template <class From, class To>
constexpr void copy(const From& from, To to) {
  for (const auto& item : from) *to++ = item;
}
}  // namespace ranges
#endif

}  // namespace std

#endif
