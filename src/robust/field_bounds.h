// Where a field's range comes from: which prescribed values bound which free vertices.
//
// A harmonic field has no extremum inside: with weights that are not negative, each free
// value is a mean of its neighbours'. So it lies between the least and the greatest value
// prescribed next to its region, the free vertices that it is connected with by entries of
// the matrix. Rounding can leave that range all the same, and far, where weights of one
// row differ by 2^52 and the small ones are lost in its diagonal: soups had fields 9e-2
// outside. Moving such values back to the nearest bound makes the promise exact and every
// error at least no larger.
#ifndef QELM_ROBUST_FIELD_BOUNDS_H
#define QELM_ROBUST_FIELD_BOUNDS_H

#include <cstdint>
#include <vector>

#include "interface/mesh_system.h"

namespace qelm {

/// Regions of a system's free vertices, numbered from 0 in the order of their lowest ones.
struct FieldBounds {
  std::vector<std::int32_t> region;  ///< of each free vertex
  std::int32_t regionCount = 0;
};

FieldBounds boundsOf(const SparseBlock& freeFree);

}  // namespace qelm

#endif  // QELM_ROBUST_FIELD_BOUNDS_H
