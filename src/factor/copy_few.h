// Copies of short rows: most supernodes are a few columns wide.
#ifndef QELM_FACTOR_COPY_FEW_H
#define QELM_FACTOR_COPY_FEW_H

#include <cstddef>
#include <cstring>

#include "interface/index.h"

namespace qelm::factor {

/// Copies `count` numbers. Up to 32 of them take less time than a call of memcpy.
inline void copyFew(const double* from, int count, double* to) {
  if (count > 32) {
    std::memcpy(to, from, asIndex(count) * sizeof(double));
    return;
  }
  for (; count >= 4; count -= 4, from += 4, to += 4) std::memcpy(to, from, 4 * sizeof(double));
  if (count >= 2) std::memcpy(to, from, 2 * sizeof(double));
  if (count % 2 == 1) to[count - 1] = from[count - 1];
}

}  // namespace qelm::factor

#endif  // QELM_FACTOR_COPY_FEW_H
