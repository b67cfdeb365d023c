// From panels to the compressed columns that solves read.
#ifndef QELM_FACTOR_COLUMNS_H
#define QELM_FACTOR_COLUMNS_H

#include "factor/factor_arrays.h"
#include "factor/supernodes.h"

namespace qelm::factor {

/// Turns every panel into its columns of L, in the same memory: rows of the panel become columns,
/// each entry Y is divided by its column's pivot, L = Y / D, and the rows of each supernode's last
/// column are written out for all of its columns. Needs a copy of the largest panel.
void toColumns(const Supernodes& supernodes, const FactorArrays& factor);

}  // namespace qelm::factor

#endif  // QELM_FACTOR_COLUMNS_H
