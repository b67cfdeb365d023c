// The compiler turns the loop over a block's triangles into vector instructions, see
// the flags of this file. An element costs 27 divisions and 4 square roots, and these
// decide how long it takes.
#include "mesh/element_block.h"

// GCC and clang on 64-bit x86 can compile one function for another processor.
#if defined(__x86_64__) && defined(__GNUC__)
#define QELM_HAVE_AVX2 1
#endif

namespace qelm {
namespace {

#if defined(__GNUC__)
__attribute__((always_inline))
#endif
inline void
evaluate(const BlockCorners& corners, BlockStiffness& stiffness) {
  const auto corner = [&corners](std::size_t k, std::size_t lane) {
    return Vec3{corners.x[k][lane], corners.y[k][lane], corners.z[k][lane]};
  };
  for (std::size_t lane = 0; lane < kBlock; ++lane) {
    const ElementStiffness e = elementStiffness(corner(0, lane), corner(1, lane), corner(2, lane));
    stiffness.k00[lane] = e.k00;
    stiffness.k11[lane] = e.k11;
    stiffness.k22[lane] = e.k22;
    stiffness.k01[lane] = e.k01;
    stiffness.k12[lane] = e.k12;
    stiffness.k02[lane] = e.k02;
  }
}

#if defined(QELM_HAVE_AVX2)
__attribute__((target("avx2"), flatten)) void evaluateAvx2(const BlockCorners& corners,
                                                           BlockStiffness& stiffness) {
  evaluate(corners, stiffness);
}
#endif

}  // namespace

void stiffnessOfBlockBaseline(const BlockCorners& corners, BlockStiffness& stiffness) {
  evaluate(corners, stiffness);
}

#if defined(QELM_HAVE_AVX2)
const StiffnessOfBlock stiffnessOfBlockAvx2 = evaluateAvx2;
#else
const StiffnessOfBlock stiffnessOfBlockAvx2 = nullptr;
#endif

StiffnessOfBlock fastestStiffnessOfBlock() {
#if defined(QELM_HAVE_AVX2)
  if (__builtin_cpu_supports("avx2")) return evaluateAvx2;
#endif
  return stiffnessOfBlockBaseline;
}

}  // namespace qelm
