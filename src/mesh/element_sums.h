// The stiffness of every triangle of a mesh, added up over edges and vertices.
#ifndef QELM_MESH_ELEMENT_SUMS_H
#define QELM_MESH_ELEMENT_SUMS_H

#include <cstdint>
#include <span>

#include "mesh/edge_sums.h"

namespace qelm {

/// Adds the stiffness of one triangle after the other, in their order: the same bits,
/// whichever of these is called. 3n coordinates, packed xyz; 3m indices in 0 .. n-1, the
/// ones that `sums` was made for. Returns whether some triangle repeats a vertex; the sums
/// mean nothing then.
using AddElements = bool (*)(std::span<const double> coordinates,
                             std::span<const std::int32_t> triangles, EdgeSums& sums);

/// For every processor of the kind that the library was compiled for.
bool addElementsBaseline(std::span<const double> coordinates,
                         std::span<const std::int32_t> triangles, EdgeSums& sums);
/// For those with AVX2 alone; null where there is no such thing.
extern const AddElements addElementsAvx2;

/// The fastest that this processor can run.
AddElements fastestAddElements();

}  // namespace qelm

#endif  // QELM_MESH_ELEMENT_SUMS_H
