// Stiffnesses of several triangles side by side in the processor's vector registers.
#ifndef QELM_MESH_ELEMENT_BLOCK_H
#define QELM_MESH_ELEMENT_BLOCK_H

#include <array>
#include <cstddef>

#include "mesh/element.h"

namespace qelm {

/// Triangles in a block. A multiple of every vector register's length.
inline constexpr std::size_t kBlock = 16;

using Lanes = std::array<double, kBlock>;

/// Corners 0, 1, 2 of each triangle.
struct BlockCorners {
  std::array<Lanes, 3> x, y, z;
};

struct BlockStiffness {
  Lanes k00, k11, k22;
  Lanes k01, k12, k02;

  ElementStiffness of(std::size_t lane) const {
    return {k00[lane], k11[lane], k22[lane], k01[lane], k12[lane], k02[lane]};
  }
};

/// elementStiffness() of every triangle of a block: the same bits, whichever of these
/// is called. Division and square root are rounded correctly in every lane, and no
/// product is fused with a sum.
using StiffnessOfBlock = void (*)(const BlockCorners& corners, BlockStiffness& stiffness);

/// For every processor of the kind that the library was compiled for.
void stiffnessOfBlockBaseline(const BlockCorners& corners, BlockStiffness& stiffness);
/// For those with AVX2 alone; null where there is no such thing.
extern const StiffnessOfBlock stiffnessOfBlockAvx2;

/// The fastest that this processor can run.
StiffnessOfBlock fastestStiffnessOfBlock();

}  // namespace qelm

#endif  // QELM_MESH_ELEMENT_BLOCK_H
