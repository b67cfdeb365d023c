// A heap that fails on demand, on one thread alone, and counts what was not given back.
//
// Linked as support/failing_heap.h says; that one is for one thread, and exact.
#ifndef QELM_TESTS_SOAK_SHAKY_HEAP_H
#define QELM_TESTS_SOAK_SHAKY_HEAP_H

namespace qelm::test {

/// While an object of this type lives, allocation number `failAt` of this thread fails, from 1
/// on; none with 0.
class ShakyHeap {
 public:
  explicit ShakyHeap(int failAt);
  ~ShakyHeap();
  ShakyHeap(const ShakyHeap&) = delete;
  ShakyHeap& operator=(const ShakyHeap&) = delete;

  /// Allocated by any thread and not given back.
  static long liveBlocks();
};

}  // namespace qelm::test

#endif  // QELM_TESTS_SOAK_SHAKY_HEAP_H
