// From panels to the compressed columns that solves read.
#ifndef QELM_FACTOR_COMPRESSED_COLUMNS_H
#define QELM_FACTOR_COMPRESSED_COLUMNS_H

#include "factor/factor_arrays.h"
#include "factor/supernodes.h"

namespace qelm::factor {

/// Turns every panel into columns of L, in the same memory: transposes it, divides each entry of
/// Y = L D by its column's pivot, and writes the row indices of all columns but the last, which
/// stand already. Needs a copy of the largest panel.
void toCompressedColumns(const Supernodes& supernodes, const FactorArrays& factor);

}  // namespace qelm::factor

#endif  // QELM_FACTOR_COMPRESSED_COLUMNS_H
