// The one place for what compilers offer beyond the language. Each has a plain form for other
// compilers, and none changes a result.
#ifndef QELM_INTERFACE_COMPILER_H
#define QELM_INTERFACE_COMPILER_H

// GCC and clang on 64-bit x86 can compile one function for another processor.
#if defined(__x86_64__) && defined(__GNUC__)
#define QELM_X86 1
#endif

// QELM_INLINE: the function is compiled as a part of its caller, for the caller's processor.
// QELM_KEEP_LOOP: the loop is not unrolled, so that the compiler turns it into vector instructions.
#if defined(__clang__)
#define QELM_INLINE __attribute__((always_inline)) inline
#define QELM_KEEP_LOOP _Pragma("clang loop unroll(disable)")
#elif defined(__GNUC__)
#define QELM_INLINE __attribute__((always_inline)) inline
#define QELM_KEEP_LOOP _Pragma("GCC unroll 1")
#else
#define QELM_INLINE inline
#define QELM_KEEP_LOOP
#endif

namespace qelm {

/// Asks the processor to fetch memory that will be read soon. Any address is allowed.
QELM_INLINE void prefetchToRead([[maybe_unused]] const void* address) {
#if defined(__GNUC__)
  __builtin_prefetch(address);
#endif
}

/// Asks the processor to fetch memory that will be written soon. Any address is allowed.
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
