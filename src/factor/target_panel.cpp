// In: a supernode's entries of A, then one update after the other. Out: its columns of Y = L D, and
// its pivots. The panel is stored row by row, since the updates of different paths take any rows,
// in blocks of kBlock columns. Columns are packed for the kernel block by block:
//
//   the panel's rows, width 6,      packed columns of a descendant with two columns, k = 0 and 1,
//   were kBlock 4                   that has rows 1 and 4 among the target's columns
//
//   x x x x | x x 0 0               0 L10 0 0   0 L11 0 0  |  L40 0 0 0   L41 0 0 0
//   x x x x | x x 0 0                 k = 0       k = 1         k = 0       k = 1
//
// Columns that a descendant does not update are packed as zeros: x - 0 * y is x, since no entry is
// ever -0.0 (it starts as 0.0 plus something, and a difference of equal numbers is 0.0). Rows go
// through the kernel in chunks that stay in the first cache while all blocks of columns pass. Of
// the triangle above the diagonal, whole groups of rows are left out.
//
// factorize() computes the diagonal block first, from left to right, then the rows below: each
// block of columns takes the updates of the blocks before it, then forward substitution within the
// block.
#include "factor/target_panel.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "factor/copy_few.h"
#include "factor/quotients.h"
#include "interface/index.h"

namespace qelm::factor {
namespace {

/// Updates of no more multiplications than this are computed entry by entry: packing them for the
/// kernel would take longer.
constexpr int kFewMultiplications = 128;

/// The numbers in a chunk of rows: half the first cache.
constexpr int kChunkNumbers = 2048;

/// Makes room for `count` numbers of any value. Frees the old ones before it takes more memory: the
/// panels of small meshes are large beside their factors.
void makeRoom(std::vector<double>& numbers, std::ptrdiff_t count) {
  if (std::ssize(numbers) >= count) return;
  std::vector<double>().swap(numbers);
  numbers.resize(asIndex(count));
}

void makeClearedRoom(std::vector<double>& numbers, std::ptrdiff_t count) {
  makeRoom(numbers, count);
  std::fill_n(numbers.begin(), count, 0.0);
}

/// Where packed_ holds what updates the block of own columns that begins at `column`: the columns
/// before it, then the block's own triangle.
std::ptrdiff_t packedOffset(int column) {
  const std::ptrdiff_t block = column / kBlock;
  return block * (block + 1) / 2 * kBlock * kBlock;
}

/// How many rows of `depth` numbers make a chunk.
int chunkOfRows(int depth) { return std::max(1, kChunkNumbers / depth / kBlock) * kBlock; }

}  // namespace

void TargetPanel::load(const Panel& panel) {
  firstColumn_ = panel.firstColumn;
  width_ = panel.width;
  rowCount_ = panel.width + panel.belowCount;
  stride_ = (width_ + kBlock - 1) / kBlock * kBlock;
  makeRoom(values_, std::ptrdiff_t{rowCount_} * stride_);
  for (int r = 0; r < width_; ++r) {
    copyFew(panel.triangleRow(r), r, row(r));
    row(r)[r] = factor_.diagonal[firstColumn_ + r];
    std::fill(row(r) + r + 1, row(r) + stride_, 0.0);
    localRow_[firstColumn_ + r] = r;
  }
  for (int p = 0; p < panel.belowCount; ++p) {
    double* const to = row(width_ + p);
    std::fill_n(to + stride_ - kBlock, kBlock, 0.0);
    copyFew(panel.belowRow(p), width_, to);
    localRow_[panel.rowIndices[p]] = width_ + p;
  }
}

void TargetPanel::storeTo(const Panel& panel) const {
  for (int r = 0; r < width_; ++r) copyFew(row(r), r, panel.triangleRow(r));
  for (int p = 0; p < panel.belowCount; ++p) copyFew(row(width_ + p), width_, panel.belowRow(p));
}

void TargetPanel::fillUpGroup(std::size_t count) {
  const std::size_t whole = (count + kernel_.rowGroup - 1) / kernel_.rowGroup * kernel_.rowGroup;
  rows_.resize(whole);
  for (std::size_t r = count; r < whole; ++r) rows_[r] = {rows_[0].source, unread_};
}

void TargetPanel::apply(const Descendant& descendant, const Update& update) {
  if (update.positions.empty()) return;
  const std::ptrdiff_t columnCount = descendant.columnCount();
  if (columnCount * update.depth() * std::ssize(update.positions) <= kFewMultiplications) {
    applyByEntries(descendant, update);
  } else {
    applyByBlocks(descendant, update);
  }
}

void TargetPanel::applyByEntries(const Descendant& descendant, const Update& update) {
  const int depth = update.depth();
  const int columnCount = descendant.columnCount();
  const int* const columns = descendant.columns();
  const double* const pivots = factor_.diagonal + descendant.panel.firstColumn + update.beginColumn;
  std::array<double, kFewMultiplications> quotients;
  for (int c = 0; c < columnCount; ++c) {
    divideStrided(descendant.panel.belowRow(descendant.firstRow + c) + update.beginColumn, pivots,
                  depth, quotients.data() + std::ptrdiff_t{c} * depth, 1);
  }
  for (const int p : update.positions) {
    const double* const y = descendant.panel.belowRow(p) + update.beginColumn;
    double* const to = row(localRow_[descendant.panel.rowIndices[p]]);
    const double* l = quotients.data();
    for (int c = 0; c < columnCount; ++c) {
      double& entry = to[columns[c] - firstColumn_];
      for (int k = 0; k < depth; ++k) entry -= *l++ * y[k];
    }
  }
}

void TargetPanel::applyByBlocks(const Descendant& descendant, const Update& update) {
  const int* const columns = descendant.columns();
  const int columnCount = descendant.columnCount();
  const int firstBlock = (columns[0] - firstColumn_) / kBlock;
  const int blockCount = (columns[columnCount - 1] - firstColumn_) / kBlock - firstBlock + 1;
  packColumns(descendant, firstBlock, blockCount);

  const auto chunk = asIndex(chunkOfRows(update.depth()));
  for (std::size_t begin = 0; begin < update.positions.size(); begin += chunk) {
    Update part = update;
    part.positions =
        update.positions.subspan(begin, std::min(chunk, update.positions.size() - begin));
    applyToChunk(descendant, part, firstBlock, blockCount);
  }
}

/// Leaves out, for each block of columns, the groups of rows that lie above it.
void TargetPanel::applyToChunk(const Descendant& descendant, const Update& update, int firstBlock,
                               int blockCount) {
  const std::size_t count = update.positions.size();
  rows_.resize(count + kernel_.rowGroup - 1);
  for (std::size_t k = 0; k < count; ++k) {
    const int p = update.positions[k];
    rows_[k] = {
        descendant.panel.belowRow(p) + update.beginColumn,
        row(localRow_[descendant.panel.rowIndices[p]]) + std::ptrdiff_t{firstBlock} * kBlock};
  }
  fillUpGroup(count);
  std::size_t below = 0;
  for (int b = 0; b < blockCount; ++b) {
    const int blockColumn = firstColumn_ + (firstBlock + b) * kBlock;
    const auto lastOfGroup = [&] { return update.positions[below + kernel_.rowGroup - 1]; };
    while (below + kernel_.rowGroup <= count &&
           descendant.panel.rowIndices[lastOfGroup()] < blockColumn) {
      below += kernel_.rowGroup;
    }
    kernel_.update(
        std::span<const RowPair>(rows_).subspan(below),
        packed_.data() + (std::ptrdiff_t{b} * descendant.panel.width + update.beginColumn) * kBlock,
        update.depth());
    for (std::size_t r = below; r < count; ++r) rows_[r].target += kBlock;
  }
}

/// Packs L's entries in the rows of the descendant that are columns of the target, and zeros for
/// the columns between them.
void TargetPanel::packColumns(const Descendant& descendant, int firstBlock, int blockCount) {
  const int depth = descendant.panel.width;
  makeClearedRoom(packed_, std::ptrdiff_t{blockCount} * depth * kBlock);
  const double* const pivots = factor_.diagonal + descendant.panel.firstColumn;
  for (int p = descendant.firstRow; p < descendant.pastColumns; ++p) {
    const int column = descendant.panel.rowIndices[p] - firstColumn_ - firstBlock * kBlock;
    double* const to =
        packed_.data() + Eigen::Index{column / kBlock} * depth * kBlock + column % kBlock;
    divideStrided(descendant.panel.belowRow(p), pivots, depth, to, kBlock);
  }
}

/// The diagonal block first, then the rows below it chunk by chunk.
bool TargetPanel::factorize() {
  makeClearedRoom(packed_, packedOffset(stride_));
  for (int column = 0; column < width_; column += kBlock) {
    packOwnColumns(column);
    subtractOwnColumns(column, column, width_);
    if (!factorizeTriangle(column)) return false;
    substitute(column, std::min(column + kBlock, width_), width_);
  }
  const int chunk = chunkOfRows(width_);
  for (int begin = width_; begin < rowCount_; begin += chunk) {
    const int end = std::min(begin + chunk, rowCount_);
    for (int column = 0; column < width_; column += kBlock) {
      subtractOwnColumns(column, begin, end);
      substitute(column, begin, end);
    }
  }
  return true;
}

void TargetPanel::packOwnColumns(int blockBegin) {
  double* const to = packed_.data() + packedOffset(blockBegin);
  const double* const pivots = factor_.diagonal + firstColumn_;
  const int count = std::min(kBlock, width_ - blockBegin);
  for (int c = 0; c < count; ++c) {
    divideStrided(row(blockBegin + c), pivots, blockBegin, to + c, kBlock);
  }
}

/// Updates the rows begin .. end-1 of a block of columns with the columns before it.
void TargetPanel::subtractOwnColumns(int blockBegin, int begin, int end) {
  if (blockBegin == 0) return;
  rows_.clear();
  for (int r = begin; r < end; ++r) rows_.push_back({row(r), row(r) + blockBegin});
  fillUpGroup(rows_.size());
  kernel_.update(rows_, packed_.data() + packedOffset(blockBegin), blockBegin);
}

/// Updates the same rows with the columns of the block itself.
void TargetPanel::substitute(int blockBegin, int begin, int end) {
  if (begin == end) return;
  rows_.clear();
  for (int r = begin; r < end; ++r) rows_.push_back({nullptr, row(r) + blockBegin});
  fillUpGroup(rows_.size());
  kernel_.substitute(rows_, packedTriangle(blockBegin));
}

double* TargetPanel::packedTriangle(int blockBegin) {
  return packed_.data() + packedOffset(blockBegin) + std::ptrdiff_t{blockBegin} * kBlock;
}

/// Computes the triangle of a block of columns, and packs its columns of L for the rows below.
bool TargetPanel::factorizeTriangle(int blockBegin) {
  const int count = std::min(kBlock, width_ - blockBegin);
  double* const pivots = factor_.diagonal + firstColumn_ + blockBegin;
  double* const columns = packedTriangle(blockBegin);
  for (int r = 0; r < count; ++r) {
    double* const entries = row(blockBegin + r) + blockBegin;
    for (int c = 0; c <= r; ++c) {
      if (c > 0) columns[(c - 1) * kBlock + r] = entries[c - 1] / pivots[c - 1];
      const double* const other = columns + c;
      for (std::ptrdiff_t k = 0; k < c; ++k) entries[c] -= other[k * kBlock] * entries[k];
    }
    pivots[r] = entries[r];
    if (pivots[r] == 0 || !std::isfinite(pivots[r])) return false;
  }
  return true;
}

}  // namespace qelm::factor
