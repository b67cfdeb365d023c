// A heap that runs out on demand and knows what was not given back.
//
// A program that links failing_heap.cpp must be linked with
//   -Wl,--wrap=malloc,--wrap=calloc,--wrap=realloc,--wrap=free
// so that every allocation of the objects in it passes here; operator new and
// delete are replaced too. Tests with this heap link the library's objects.
#ifndef QELM_TESTS_SUPPORT_FAILING_HEAP_H
#define QELM_TESTS_SUPPORT_FAILING_HEAP_H

#include <cstddef>

namespace qelm::test {

enum class HeapFailure {
  once,    ///< one allocation fails, those after it succeed
  forever  ///< that allocation and every later one fail
};

/// While an object of this type lives, allocations are counted. One thread only.
/// The one with the number failAt (from 1; 0 for none) fails.
class FailingHeap {
 public:
  FailingHeap(long failAt, HeapFailure failure);
  ~FailingHeap();
  FailingHeap(const FailingHeap&) = delete;
  FailingHeap& operator=(const FailingHeap&) = delete;

  long allocations() const;  ///< so far, failed ones included
  bool failed() const;       ///< whether one was made to fail
  long live() const;         ///< blocks allocated here and not yet freed
  std::size_t liveBytes() const;
  std::size_t peakBytes() const;  ///< the most that were live at once
};

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_FAILING_HEAP_H
