// Short vectors of doubles. A function template over the number of lanes is written once, and
// compiled for each set of instructions: two lanes everywhere, four with AVX2, eight with AVX-512.
//
//   QELM_INLINE template of the loop      loop<2>, loop<4>, loop<8>, part of their callers
//   __attribute__((target("avx2")))       caller of loop<4>: its instructions are AVX2's
//
// Operations on a vector are those on each of its lanes, rounded in the same way.
#ifndef QELM_INTERFACE_VECTORS_H
#define QELM_INTERFACE_VECTORS_H

#include <cstring>
#include <utility>

#include "interface/compiler.h"

namespace qelm {

template <int kLanes>
struct VectorOf {
  typedef double Type __attribute__((vector_size(kLanes * sizeof(double))));
};

/// body(0), body(1), ... body(kCount - 1), unrolled: an array indexed by the argument stays in
/// registers.
template <int kCount, class Body>
QELM_INLINE void unrolled(Body body) {
  [&]<int... k>(std::integer_sequence<int, k...>) __attribute__((always_inline)) {
    (body(std::integral_constant<int, k>{}), ...);
  }
  (std::make_integer_sequence<int, kCount>{});
}

// Vectors are passed by reference: how they are returned by value depends on the instruction set.
// Addresses need not be multiples of a vector's size.
template <class Vector>
QELM_INLINE void load(Vector& v, const double* from) {
  std::memcpy(&v, from, sizeof v);
}

template <class Vector>
QELM_INLINE void store(const Vector& v, double* to) {
  std::memcpy(to, &v, sizeof v);
}

}  // namespace qelm

#endif  // QELM_INTERFACE_VECTORS_H
