#include "support/memory.h"

#include <algorithm>
#include <atomic>
#include <cerrno>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

// Counting costs a little, so it goes on only for runs whose time is not taken.
// Peers may have threads.
std::atomic<bool> counting{false};
std::atomic<std::ptrdiff_t> held{0};
std::atomic<std::ptrdiff_t> highest{0};

}  // namespace

#if defined(__GLIBC__)

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void __libc_free(void*);
}

namespace {

// Large blocks normally go back to the system when freed. What the next ones then
// cost depends on what ran before; kept, they cost every contender alike. With
// QELM_BENCH_HEAP=default nothing is set, for what callers of a program of theirs see.
bool wantsDefaultHeap() {
  const char* const heap = std::getenv("QELM_BENCH_HEAP");
  return heap != nullptr && std::string_view(heap) == "default";
}
const bool keepsMemory = !wantsDefaultHeap() && mallopt(M_MMAP_THRESHOLD, 1 << 30) == 1 &&
                         mallopt(M_TRIM_THRESHOLD, 1 << 30) == 1 &&
                         mallopt(M_TOP_PAD, 1 << 27) == 1;

void add(std::ptrdiff_t bytes) {
  const std::ptrdiff_t now = held += bytes;
  std::ptrdiff_t before = highest;
  while (before < now && !highest.compare_exchange_weak(before, now)) {
  }
}

void* counted(void* block) {
  if (counting && block != nullptr) add(static_cast<std::ptrdiff_t>(malloc_usable_size(block)));
  return block;
}

void discount(void* block) {
  if (counting && block != nullptr) add(-static_cast<std::ptrdiff_t>(malloc_usable_size(block)));
}

}  // namespace

// The program's own definitions stand in for the C library's in every library.
extern "C" {

void* malloc(std::size_t size) { return counted(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) { return counted(__libc_calloc(count, size)); }

void* realloc(void* block, std::size_t size) {
  discount(block);
  return counted(__libc_realloc(block, size));
}

void free(void* block) {
  discount(block);
  __libc_free(block);
}

void* memalign(std::size_t alignment, std::size_t size) {
  return counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void** to, std::size_t alignment, std::size_t size) {
  void* const block = memalign(alignment, size);
  if (block == nullptr) return ENOMEM;
  *to = block;
  return 0;
}
}

#endif

namespace qelm::bench {

std::size_t peakBytesOf(const std::function<void()>& run) {
  held = 0;
  highest = 0;
  counting = true;
  run();
  counting = false;
  return static_cast<std::size_t>(std::max<std::ptrdiff_t>(highest, 0));
}

}  // namespace qelm::bench
