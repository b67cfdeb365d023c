// How much memory a call holds at its highest point.
#ifndef QELM_BENCH_SUPPORT_MEMORY_H
#define QELM_BENCH_SUPPORT_MEMORY_H

#include <cstddef>
#include <functional>

namespace qelm::bench {

/// The most bytes of the C heap that `run` held at once beyond what was there
/// before it, of this and every other library in the process. Block sizes are
/// those that the heap gave. 0 where the heap cannot be watched (it is glibc's
/// that can).
std::size_t peakBytesOf(const std::function<void()>& run);

}  // namespace qelm::bench

#endif  // QELM_BENCH_SUPPORT_MEMORY_H
