#include "support/failing_heap.h"

#include <cstddef>
#include <cstdlib>
#include <new>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
}

namespace {

// Blocks that were allocated under watch are few; a plain table needs no heap.
constexpr int kMaxLive = 4096;

struct Block {
  void* address;
  std::size_t size;
};

struct Watch {
  bool active = false;
  long failAt = 0;
  bool forever = false;
  long allocations = 0;
  bool failed = false;
  Block live[kMaxLive] = {};
  int liveCount = 0;
  std::size_t liveBytes = 0;
  std::size_t peakBytes = 0;
};

// Not thread_local: where that is emulated, its first use allocates. Programs with
// this heap allocate on one thread while they watch.
Watch watch;

/// Whether the allocation that is being asked for must fail. One of no bytes may
/// answer null on any platform and is no failure.
bool mustFail(std::size_t size) {
  if (!watch.active || size == 0) return false;
  ++watch.allocations;
  const bool fails = watch.failAt != 0 && (watch.forever ? watch.allocations >= watch.failAt
                                                         : watch.allocations == watch.failAt);
  watch.failed = watch.failed || fails;
  return fails;
}

void* remember(void* block, std::size_t size) {
  if (watch.active && block != nullptr) {
    if (watch.liveCount == kMaxLive) std::abort();
    watch.live[watch.liveCount++] = {block, size};
    watch.liveBytes += size;
    if (watch.liveBytes > watch.peakBytes) watch.peakBytes = watch.liveBytes;
  }
  return block;
}

void forget(void* block) {
  if (!watch.active || block == nullptr) return;
  for (int i = watch.liveCount - 1; i >= 0; --i) {
    if (watch.live[i].address == block) {
      watch.liveBytes -= watch.live[i].size;
      watch.live[i] = watch.live[--watch.liveCount];
      return;
    }
  }
}

}  // namespace

extern "C" {

void* __wrap_malloc(std::size_t size) {
  return mustFail(size) ? nullptr : remember(__real_malloc(size), size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return mustFail(count * size) ? nullptr : remember(__real_calloc(count, size), count * size);
}

void* __wrap_realloc(void* block, std::size_t size) {
  if (mustFail(size)) return nullptr;
  forget(block);
  return remember(__real_realloc(block, size), size);
}

void __wrap_free(void* block) {
  forget(block);
  __real_free(block);
}

}  // extern "C"

namespace qelm::test {

FailingHeap::FailingHeap(long failAt, HeapFailure failure) {
  watch = Watch{};
  watch.failAt = failAt;
  watch.forever = failure == HeapFailure::forever;
  watch.active = true;
}

FailingHeap::~FailingHeap() { watch.active = false; }

long FailingHeap::allocations() const { return watch.allocations; }
bool FailingHeap::failed() const { return watch.failed; }
long FailingHeap::live() const { return watch.liveCount; }
std::size_t FailingHeap::liveBytes() const { return watch.liveBytes; }
std::size_t FailingHeap::peakBytes() const { return watch.peakBytes; }

}  // namespace qelm::test
