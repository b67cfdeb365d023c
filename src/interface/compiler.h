// What is asked of the compiler beyond the language, each with what stands for it elsewhere.
// Nothing here changes a result.
#ifndef QELM_INTERFACE_COMPILER_H
#define QELM_INTERFACE_COMPILER_H

// GCC and clang on 64-bit x86 can compile one function for another processor.
#if defined(__x86_64__) && defined(__GNUC__)
#define QELM_X86 1
#endif

// QELM_INLINE: the function becomes part of one that is compiled for another processor.
// QELM_KEEP_LOOP: the loop stays one until the compiler looks for such as vector instructions
// can do. QELM_UNROLL: the loop, of up to eight rounds, is written out.
#if defined(__clang__)
#define QELM_INLINE __attribute__((always_inline)) inline
#define QELM_KEEP_LOOP _Pragma("clang loop unroll(disable)")
#define QELM_UNROLL _Pragma("clang loop unroll(full)")
#elif defined(__GNUC__)
#define QELM_INLINE __attribute__((always_inline)) inline
#define QELM_KEEP_LOOP _Pragma("GCC unroll 1")
#define QELM_UNROLL _Pragma("GCC unroll 8")
#else
#define QELM_INLINE inline
#define QELM_KEEP_LOOP
#define QELM_UNROLL
#endif

namespace qelm {

/// Asks for memory that will be read soon. Any address will do.
QELM_INLINE void prefetchToRead([[maybe_unused]] const void* address) {
#if defined(__GNUC__)
  __builtin_prefetch(address);
#endif
}

/// Asks for memory that will be written soon. Any address will do.
QELM_INLINE void prefetchToWrite([[maybe_unused]] const void* address) {
#if defined(__GNUC__)
  __builtin_prefetch(address, 1);
#endif
}

/// Whether this processor has vector instructions for four and for eight doubles.
inline bool hasAvx2() {
#if defined(QELM_X86)
  return __builtin_cpu_supports("avx2");
#else
  return false;
#endif
}
inline bool hasAvx512() {
#if defined(QELM_X86)
  return __builtin_cpu_supports("avx512f");
#else
  return false;
#endif
}

}  // namespace qelm

#endif  // QELM_INTERFACE_COMPILER_H
