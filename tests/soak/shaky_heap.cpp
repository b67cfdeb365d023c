#include "soak/shaky_heap.h"

#include <atomic>
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

thread_local int untilFailure = 0;
std::atomic<long> live = 0;

bool mustFail() { return untilFailure > 0 && --untilFailure == 0; }

void* counted(void* block) {
  if (block != nullptr) live.fetch_add(1, std::memory_order_relaxed);
  return block;
}

}  // namespace

extern "C" {

void* __wrap_malloc(std::size_t size) {
  return mustFail() ? nullptr : counted(__real_malloc(size > 0 ? size : 1));
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
  return mustFail() ? nullptr : counted(__real_calloc(count, size));
}
void* __wrap_realloc(void* block, std::size_t size) {
  if (mustFail()) return nullptr;
  void* const moved = __real_realloc(block, size > 0 ? size : 1);
  return block == nullptr ? counted(moved) : moved;
}
void __wrap_free(void* block) {
  if (block != nullptr) live.fetch_sub(1, std::memory_order_relaxed);
  __real_free(block);
}

}  // extern "C"

namespace qelm::test {

ShakyHeap::ShakyHeap(int failAt) { untilFailure = failAt; }
ShakyHeap::~ShakyHeap() { untilFailure = 0; }
long ShakyHeap::liveBlocks() { return live; }

}  // namespace qelm::test
