// Stiffnesses of P1 triangles, several side by side in the processor's vector registers,
// with room for other work while it divides.
//
// The gradient of a corner's hat function points from the foot of its height to the corner
// and has length 1 / height (Strang and Fix, An Analysis of the Finite Element Method, 1973,
// ch. 1). For the corner p, whose height has its foot on the edge from q towards r:
//
//   height = 2 area / |r - q|
//   share  = how far from q to r the foot is = (p - q) . (r - q) / |r - q| / |r - q|
//   foot   = q + share (r - q)
//   grad   = (p - foot) / height / height
//
// Divisions by a length come one after the other, never by its square: the square rounds
// differently and can under- or overflow. The order of operations is binding, here and in
// vec3.h: the assembled matrix has the same bits on every platform because of it. There is
// no branch either.
//
// A triangle without area has heights of 0 and gives NaN or infinite entries; NaN and
// infinite coordinates do too. Nothing is tested here.
//
// An element costs 27 divisions and 4 square roots, which take a processor some 60 cycles,
// whatever its registers' width; of its other instructions it could do 300 meanwhile. But
// it looks only so far ahead: what waits for a quotient fills its queues. So each step here
// asks for quotients and does nothing with them, and between steps the caller does
// something else.
#ifndef QELM_MESH_ELEMENT_BLOCK_H
#define QELM_MESH_ELEMENT_BLOCK_H

#include <array>
#include <cstddef>

#include "interface/compiler.h"
#include "mesh/vec3.h"

namespace qelm {

/// Triangles in a block. A multiple of every vector register's length.
inline constexpr std::size_t kBlock = 8;

/// How often the steps of a block let the caller do something else.
inline constexpr std::size_t kPauses = 8;

using Lanes = std::array<double, kBlock>;

/// Corners 0, 1, 2 of each triangle.
struct BlockCorners {
  std::array<Lanes, 3> x, y, z;
};

/// The six different entries of the symmetric 3 x 3 element matrix
/// K_ab = area * (grad phi_a . grad phi_b).
struct ElementStiffness {
  double k00, k11, k22;
  double k01, k12, k02;
};

struct BlockStiffness {
  Lanes k00, k11, k22;
  Lanes k01, k12, k02;

  ElementStiffness of(std::size_t lane) const {
    return {k00[lane], k11[lane], k22[lane], k01[lane], k12[lane], k02[lane]};
  }
};

namespace block_steps {

/// Of each corner: its height's foot is looked for from corner kFrom on, towards corner kTo.
inline constexpr std::array<std::size_t, 3> kFrom = {1, 0, 1};
inline constexpr std::array<std::size_t, 3> kTo = {2, 2, 0};

struct Between {
  Lanes area;
  std::array<Lanes, 3> length;  ///< of the edge opposite each corner
  std::array<Lanes, 3> share;   ///< of that edge, as far as the foot; on its way there
  std::array<Lanes, 3> height;
  std::array<Lanes, 3> x, y, z;  ///< gradients on their way
};

QELM_INLINE void measure(const BlockCorners& c, Between& b) {
  QELM_KEEP_LOOP
  for (std::size_t i = 0; i < kBlock; ++i) {
    const Vec3 p0{c.x[0][i], c.y[0][i], c.z[0][i]};
    const Vec3 p1{c.x[1][i], c.y[1][i], c.z[1][i]};
    const Vec3 p2{c.x[2][i], c.y[2][i], c.z[2][i]};
    b.area[i] = 0.5 * length(cross(p1 - p0, p2 - p0));
    b.length[0][i] = length(p2 - p1);
    b.length[1][i] = length(p2 - p0);
    b.length[2][i] = length(p1 - p0);
    b.share[0][i] = dot(p0 - p1, p2 - p1);
    b.share[1][i] = dot(p2 - p0, p1 - p0);
    b.share[2][i] = b.share[0][i];
  }
}

QELM_INLINE void divideBy(const Lanes& divisor, Lanes& lanes) {
  QELM_KEEP_LOOP
  for (std::size_t i = 0; i < kBlock; ++i) lanes[i] = lanes[i] / divisor[i];
}

QELM_INLINE void findHeight(const Lanes& area, const Lanes& length, Lanes& height) {
  QELM_KEEP_LOOP
  for (std::size_t i = 0; i < kBlock; ++i) height[i] = 2 * area[i] / length[i];
}

/// One coordinate of the way from the foot to the corner, over the height.
QELM_INLINE void climb(const std::array<Lanes, 3>& corners, std::size_t k, const Lanes& share,
                       const Lanes& height, Lanes& gradient) {
  const Lanes& from = corners[kFrom[k]];
  const Lanes& to = corners[kTo[k]];
  QELM_KEEP_LOOP
  for (std::size_t i = 0; i < kBlock; ++i) {
    const double foot = from[i] + share[i] * (to[i] - from[i]);
    gradient[i] = (corners[k][i] - foot) / height[i];
  }
}

QELM_INLINE void multiply(const Between& b, std::size_t k, std::size_t l, Lanes& entry) {
  QELM_KEEP_LOOP
  for (std::size_t i = 0; i < kBlock; ++i) {
    const Vec3 gradient{b.x[k][i], b.y[k][i], b.z[k][i]};
    const Vec3 other{b.x[l][i], b.y[l][i], b.z[l][i]};
    entry[i] = b.area[i] * dot(gradient, other);
  }
}

}  // namespace block_steps

/// Of every triangle of a block, with the bits that it would have alone: division and
/// square root are rounded correctly in every lane, and no product is fused with a sum.
/// Calls pause(0) ... pause(kPauses - 1) on the way.
template <class Pause>
QELM_INLINE void stiffnessOfBlock(const BlockCorners& c, BlockStiffness& stiffness, Pause pause) {
  block_steps::Between b;
  block_steps::measure(c, b);
  pause(0);
  for (std::size_t k = 0; k < 3; ++k) {
    block_steps::findHeight(b.area, b.length[k], b.height[k]);
    block_steps::divideBy(b.length[k], b.share[k]);
  }
  pause(1);
  for (std::size_t k = 0; k < 3; ++k) block_steps::divideBy(b.length[k], b.share[k]);
  for (std::size_t k = 0; k < 3; ++k) {
    block_steps::climb(c.x, k, b.share[k], b.height[k], b.x[k]);
    block_steps::climb(c.y, k, b.share[k], b.height[k], b.y[k]);
    block_steps::climb(c.z, k, b.share[k], b.height[k], b.z[k]);
    pause(2 + k);
  }
  for (std::size_t k = 0; k < 3; ++k) {
    block_steps::divideBy(b.height[k], b.x[k]);
    block_steps::divideBy(b.height[k], b.y[k]);
    block_steps::divideBy(b.height[k], b.z[k]);
    pause(5 + k);
  }
  block_steps::multiply(b, 0, 0, stiffness.k00);
  block_steps::multiply(b, 1, 1, stiffness.k11);
  block_steps::multiply(b, 2, 2, stiffness.k22);
  block_steps::multiply(b, 0, 1, stiffness.k01);
  block_steps::multiply(b, 1, 2, stiffness.k12);
  block_steps::multiply(b, 0, 2, stiffness.k02);
}

}  // namespace qelm

#endif  // QELM_MESH_ELEMENT_BLOCK_H
