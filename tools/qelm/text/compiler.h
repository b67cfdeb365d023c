// The one place for what compilers offer beyond the language. Each has a plain form for other
// compilers.
#ifndef QELM_TOOLS_COMPILER_H
#define QELM_TOOLS_COMPILER_H

#include <cstddef>

namespace qelm::tool {

/// Asks the processor to fetch memory that will be read soon. Any address is allowed.
inline void prefetchToRead([[maybe_unused]] const void* address) {
#if defined(__GNUC__)
  __builtin_prefetch(address);
#endif
}

/// Asks the processor to fetch memory that will be written soon. Any address is allowed.
inline void prefetchToWrite([[maybe_unused]] const void* address) {
#if defined(__GNUC__)
  __builtin_prefetch(address, 1);
#endif
}

/// An unsigned number with its bytes in the other order.
template <class Word>
Word byteSwapped(Word word) {
#if defined(__GNUC__)
  if constexpr (sizeof(Word) == 8) return __builtin_bswap64(word);
  if constexpr (sizeof(Word) == 4) return __builtin_bswap32(word);
  if constexpr (sizeof(Word) == 2) return __builtin_bswap16(word);
  if constexpr (sizeof(Word) == 1) return word;
#else
  Word swapped = 0;
  for (std::size_t k = 0; k < sizeof(Word); ++k) {
    swapped = static_cast<Word>(swapped << 8 | (word >> 8 * k & 0xff));
  }
  return swapped;
#endif
}

}  // namespace qelm::tool

#endif
