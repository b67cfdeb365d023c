// Counts that become indices of 32 bits.
#ifndef QELM_INTERFACE_INDEXABLE_H
#define QELM_INTERFACE_INDEXABLE_H

#include <cstdint>
#include <limits>
#include <new>

namespace qelm {

/// `count` as an int. Throws std::bad_alloc if it is more than an int can index: Eigen and the
/// exported records would go on with a number that has wrapped around.
inline int indexable(std::int64_t count) {
  if (count > std::numeric_limits<int>::max()) throw std::bad_alloc();
  return static_cast<int>(count);
}

}  // namespace qelm

#endif  // QELM_INTERFACE_INDEXABLE_H
