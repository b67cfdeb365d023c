// Fields between prescribed values from a stored factorisation: forward and back substitution for
// one right-hand side, or for several in each pass through the factor.
//
// In: n values for each field, and n loads or none, in input order. Out: n results for each field.
// The factor is read once for a block of up to 16 fields. Their right-hand sides lie side by side:
//
//              field 0 1 .. 15
//   row 0      | x x .. x |  rows 0 .. t-1: prescribed vertices, in system order
//   row 1      | x x .. x |
//   ...                      rows t .. n-1: free vertices, in the factor's order
//
// Cost for each field: two multiplications for each entry of L, and a sixteenth of reading L.
#ifndef QELM_SOLVE_BATCH_SOLVE_H
#define QELM_SOLVE_BATCH_SOLVE_H

#include <span>

#include "interface/mesh_system.h"

namespace qelm {

/// Fields of n values each, one after another, in input order. `loads` may be empty: then there are
/// no loads. Any two of the three arrays may be the same, but may not overlap otherwise.
struct Batch {
  std::span<const double> values;
  std::span<const double> loads;
  std::span<double> results;
};

/// How many right-hand sides go through the factor together: a power of two from 1 to 32.
///
/// 16, by measurement (bench/batch_bench.cpp). Time for one field, as a share of a single
/// solve, on grids of 100 thousand and 1 million vertices, with AVX-512:
///
///   width   2     4     8     16    32
///   100k    0.63  0.36  0.29  0.24  0.22
///   1M      0.70  0.38  0.28  0.20  0.17
///
/// A factor far larger than the caches is read once for all fields of a block. 32 would save
/// another tenth, but for twice the memory.
constexpr int kBatchWidth = 16;

/// Solves for every field of the batch, each on its own:
///
///   K_ff u_f = -K_fb u_b - load_f
///
/// the rows of the free vertices of K u + load = 0, or of K u = 0 without loads: the
/// discrete harmonic field between the prescribed values. A load enters as it is, one
/// value for each free vertex, without mass matrix or scaling. Values are read at prescribed
/// vertices only and come back bit for bit; loads are read at free vertices only. If the
/// factorisation failed, every free vertex gets 0.0.
///
/// A field's bits are those of Eigen's own solve() for that field alone, a NaN's sign aside;
/// `width`, the most fields in a block, has no influence on them. Needs `width` + 2 doubles for
/// each vertex, all allocated before the first result is written. Reads the system only, takes no
/// lock.
void solveBatch(const MeshSystem& system, const Batch& batch, int width = kBatchWidth);

/// The same, and whether all results at free vertices are finite. They are looked at on their way
/// out, which costs 1 % of a single solve and less of many; to read them again afterwards would
/// cost 3 % of 16 fields with 100 thousand vertices, which the caches have lost by then.
bool solveBatchLooking(const MeshSystem& system, const Batch& batch);

}  // namespace qelm

#endif  // QELM_SOLVE_BATCH_SOLVE_H
