#include "solve/batch_solve.h"

#include <Eigen/Core>
#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>

#include "interface/index.h"
#include "solve/factor_rows.h"
#include "solve/factor_vector.h"
#include "solve/field_bounds.h"

namespace qelm {
namespace {

using Eigen::Index;

std::size_t fieldCount(const MeshSystem& system, const Batch& batch) {
  return batch.values.size() / asIndex(system.vertexCount);
}

/// What all blocks of a batch share. Rows 0 .. t-1 hold the prescribed vertices in system order,
/// the other rows the free vertices in the factor's order.
struct Workspace {
  Workspace(const MeshSystem& system, std::size_t width)
      : rows(std::make_unique_for_overwrite<double[]>(asIndex(system.vertexCount) * width)),
        solved(system.freeSolver->info() == Eigen::Success) {
    if (!solved) return;
    diagonal = system.freeSolver->vectorD();
    scratch.resize(diagonal.size());
    if (system.bounds != nullptr) ranges = FieldRanges(*system.bounds, width);
  }

  std::unique_ptr<double[]> rows;
  bool solved;
  Eigen::VectorXd diagonal;  ///< D of the factor
  Eigen::VectorXd scratch;   ///< for a single right-hand side
  FieldRanges ranges;        ///< bounds of the fields, after robust construction
};

/// Tells whether all numbers of several fields are finite. No branch: x - x is 0 if x is finite,
/// and NaN if it is not.
template <int Width>
class FiniteLanes {
 public:
  void add(const double* row) {
    for (std::size_t k = 0; k < Width; ++k)
      bits_[k] |= std::bit_cast<std::uint64_t>(row[k] - row[k]);
  }
  bool areFinite() const {
    return std::ranges::all_of(bits_, [](std::uint64_t bits) { return bits == 0; });
  }

 private:
  std::array<std::uint64_t, Width> bits_ = {};
};

/// The fields of one block. Where the batch has fewer than Width fields left, the last field is
/// repeated: fields of zeros would do as well, but would send every column through the slower path
/// for right-hand sides that differ in their zeros.
template <int Width>
class Block {
 public:
  Block(const MeshSystem& system, const Batch& batch, std::size_t first, double* rows)
      : system_(system),
        batch_(batch),
        first_(first),
        count_(std::min<std::size_t>(Width, fieldCount(system, batch) - first)),
        fixed_(rows),
        free_(fixed_.from(system.fixedCount)) {}

  void gatherFixed() const {
    for (Index s = 0; s < system_.fixedCount; ++s) gather(batch_.values, s, fixed_[s]);
  }

  /// -load - K_fb u_b. Without a load the sums start from zero. The sign of a product may be turned
  /// before or after the multiplication: its bits are the same.
  void formRightHandSides() const {
    for (Index i = 0; i < freeCount(); ++i) startRightHandSide(i);
    const SparseBlock& coupling = *system_.freeFixedBlock;
    for (Index j = 0; j < coupling.outerSize(); ++j) {
      const auto prescribed = fixed_[j];
      for (SparseBlock::InnerIterator entry(coupling, j); entry; ++entry) {
        rowOfFree(entry.row()) += (-entry.value()) * prescribed;
      }
    }
  }

  void solve(Workspace& workspace) const {
    const auto view = system_.freeSolver->matrixL();
    const SparseBlock& lower = view.nestedExpression();
    if constexpr (Width == 1) {
      double* const x = free_.data();
      substituteForward(lower, x, workspace.scratch.data());
      substituteBack(lower, workspace.diagonal, x, workspace.scratch.data());
    } else {
      const RowSubstitution& substitution = rowSubstitutions<Width>().front();
      substitution.forward(lower, free_.data());
      substitution.back(lower, workspace.diagonal, free_.data());
    }
  }

  /// Only fields without a load have bounds.
  void keepWithinRanges(FieldRanges& ranges) const {
    if (!ranges.areKept() || !batch_.loads.empty()) return;
    ranges.keep<Width>(
        *system_.freeFixedBlock, [&](Index j) { return fixed_[j]; },
        [&](Index i) { return rowOfFree(i); });
  }

  void scatterFixed() const {
    for (Index s = 0; s < system_.fixedCount; ++s) scatter(fixed_[s], s);
  }
  /// If it is to look, whether all of them are finite; else true.
  template <bool kLook>
  bool scatterFree() const {
    FiniteLanes<Width> lanes;
    for (Index i = 0; i < freeCount(); ++i) {
      const auto row = rowOfFree(i);
      scatter(row, system_.fixedCount + i);
      if constexpr (kLook) lanes.add(row.data());
    }
    return lanes.areFinite();
  }
  void scatterZeros() const {
    const auto zeros = Rows::Row::Zero();
    for (Index i = 0; i < freeCount(); ++i) scatter(zeros, system_.fixedCount + i);
  }

 private:
  using Rows = RowsView<Width>;

  Index freeCount() const { return system_.freeFreeBlock->cols(); }

  auto rowOfFree(Index i) const { return free_[system_.freeSolver->permutationP().indices()[i]]; }

  /// Position in the batch's arrays of field k of this block at system vertex s.
  std::size_t position(std::size_t k, Index s) const {
    const auto input = asIndex(system_.vertexOrder[asIndex(s)]);
    return (first_ + k) * asIndex(system_.vertexCount) + input;
  }

  template <class Row>
  void gather(std::span<const double> fields, Index s, Row&& row) const {
    for (std::size_t k = 0; k < Width; ++k) {
      row[static_cast<Index>(k)] = fields[position(std::min(k, count_ - 1), s)];
    }
  }

  template <class Row>
  void scatter(const Row& row, Index s) const {
    for (std::size_t k = 0; k < count_; ++k) {
      batch_.results[position(k, s)] = row[static_cast<Index>(k)];
    }
  }

  void startRightHandSide(Index i) const {
    auto row = rowOfFree(i);
    if (batch_.loads.empty()) {
      row.setZero();
    } else {
      gather(batch_.loads, system_.fixedCount + i, row);
      row = -row;
    }
  }

  const MeshSystem& system_;
  const Batch& batch_;
  std::size_t first_;
  std::size_t count_;
  Rows fixed_;
  Rows free_;
};

/// A block reads all of its values and loads before it writes its first result, and writes nothing
/// that another block reads: so the arrays of a batch may be the same. False if it looked, and the
/// result of a free vertex is not finite.
template <int Width, bool kLook>
bool solveBlock(const MeshSystem& system, const Batch& batch, std::size_t first,
                Workspace& workspace) {
  const Block<Width> block(system, batch, first, workspace.rows.get());
  bool finite = true;
  block.gatherFixed();
  if (workspace.solved) {
    block.formRightHandSides();
    block.solve(workspace);
    block.keepWithinRanges(workspace.ranges);
    finite = block.template scatterFree<kLook>();
  } else {
    block.scatterZeros();
  }
  block.scatterFixed();
  return finite;
}

using SolveBlock = bool (*)(const MeshSystem&, const Batch&, std::size_t, Workspace&);

/// Entry k solves a block of 2^k fields.
template <bool kLook>
constexpr SolveBlock kSolveBlock[] = {solveBlock<1, kLook>,  solveBlock<2, kLook>,
                                      solveBlock<4, kLook>,  solveBlock<8, kLook>,
                                      solveBlock<16, kLook>, solveBlock<32, kLook>};

template <bool kLook>
bool solveBlocks(const MeshSystem& system, const Batch& batch, int width) {
  const std::size_t count = fieldCount(system, batch);
  const std::size_t widest = std::min(asIndex(width), std::bit_ceil(count));
  Workspace workspace(system, widest);
  bool finite = true;
  std::size_t step = 0;
  for (std::size_t first = 0; first < count; first += step) {
    step = std::min(widest, std::bit_ceil(count - first));
    finite &= kSolveBlock<kLook>[std::countr_zero(step)](system, batch, first, workspace);
  }
  return finite;
}

}  // namespace

void solveBatch(const MeshSystem& system, const Batch& batch, int width) {
  solveBlocks<false>(system, batch, width);
}

bool solveBatchLooking(const MeshSystem& system, const Batch& batch) {
  return solveBlocks<true>(system, batch, kBatchWidth);
}

}  // namespace qelm
