// A row is computed from left to right, all rows a block of columns at a time. The panel is kept
// row after row: rows are then taken in any order, which the updates of different paths need, while
// a block of columns is one run of memory. Where the columns that a source has in common with the
// target leave gaps, the gaps are filled with zeros: x - 0 * y is x, since no entry is ever -0.0
// (it starts from 0.0 plus something, and a difference of two equal numbers is 0.0).
//
// Rows go through the kernel in chunks that stay in the first cache while all blocks of columns
// pass. Of the own block and of sources whose rows are columns here, what lies above the diagonal
// is left out by whole groups of rows.
#include "factor/target_panel.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "factor/copy_few.h"
#include "factor/quotients.h"

namespace qelm::factor {
namespace {

/// Updates of no more multiplications than this are done as they come: packing them for the kernel
/// would take longer than they do.
constexpr int kFewMultiplications = 128;

/// So many numbers of the rows that go through the kernel together: half the first cache.
constexpr int kChunkNumbers = 2048;

/// At least `count` numbers. What was there is freed before more is taken: the panels of small
/// meshes are large beside their factors.
void makeRoom(std::vector<double>& numbers, std::ptrdiff_t count) {
  if (std::ssize(numbers) >= count) return;
  std::vector<double>().swap(numbers);
  numbers.resize(static_cast<std::size_t>(count));
}

void makeClearedRoom(std::vector<double>& numbers, std::ptrdiff_t count) {
  makeRoom(numbers, count);
  std::fill_n(numbers.begin(), count, 0.0);
}

/// Where the own columns before `column` lie, packed for the update of the block that begins there;
/// behind them that block's own triangle.
std::ptrdiff_t packedBefore(int column) {
  const std::ptrdiff_t block = column / kBlock;
  return block * (block + 1) / 2 * kBlock * kBlock;
}

/// Rows of `depth` numbers that stay in the first cache while the blocks of columns pass.
int chunkOfRows(int depth) { return std::max(1, kChunkNumbers / depth / kBlock) * kBlock; }

}  // namespace

void TargetPanel::load(const Panel& panel) {
  first_ = panel.first;
  width_ = panel.width;
  rowCount_ = panel.width + panel.tailSize;
  stride_ = (width_ + kBlock - 1) / kBlock * kBlock;
  makeRoom(values_, std::ptrdiff_t{rowCount_} * stride_);
  for (int r = 0; r < width_; ++r) {
    copyFew(panel.triangleRow(r), r, row(r));
    row(r)[r] = factor_.diagonal[first_ + r];
    std::fill(row(r) + r + 1, row(r) + stride_, 0.0);
    place_[first_ + r] = r;
  }
  for (int p = 0; p < panel.tailSize; ++p) {
    double* const to = row(width_ + p);
    std::fill_n(to + stride_ - kBlock, kBlock, 0.0);
    copyFew(panel.tailRow(p), width_, to);
    place_[panel.rows[p]] = width_ + p;
  }
}

void TargetPanel::storeTo(const Panel& panel) const {
  for (int r = 0; r < width_; ++r) copyFew(row(r), r, panel.triangleRow(r));
  for (int p = 0; p < panel.tailSize; ++p) copyFew(row(width_ + p), width_, panel.tailRow(p));
}

void TargetPanel::fillUpGroup(std::size_t count) {
  const std::size_t whole = (count + kernel_.rowGroup - 1) / kernel_.rowGroup * kernel_.rowGroup;
  rows_.resize(whole);
  for (std::size_t r = count; r < whole; ++r) rows_[r] = {rows_[0].source, unread_};
}

void TargetPanel::update(const Source& source, const Visit& visit) {
  if (visit.rows.empty()) return;
  const std::ptrdiff_t columnCount = source.pastColumns - source.firstRow;
  if (columnCount * (visit.end - visit.begin) * std::ssize(visit.rows) <= kFewMultiplications) {
    updateEntries(source, visit);
  } else {
    updateBlocks(source, visit);
  }
}

/// One entry after the other.
void TargetPanel::updateEntries(const Source& source, const Visit& visit) {
  const int depth = visit.end - visit.begin;
  const int columnCount = source.pastColumns - source.firstRow;
  const int* const columns = source.panel.rows + source.firstRow;
  const double* const pivots = factor_.diagonal + source.panel.first + visit.begin;
  std::array<double, kFewMultiplications> quotients;
  for (int c = 0; c < columnCount; ++c) {
    divideApart(source.panel.tailRow(source.firstRow + c) + visit.begin, pivots, depth,
                quotients.data() + std::ptrdiff_t{c} * depth, 1);
  }
  for (const int p : visit.rows) {
    const double* const y = source.panel.tailRow(p) + visit.begin;
    double* const to = row(place_[source.panel.rows[p]]);
    const double* l = quotients.data();
    for (int c = 0; c < columnCount; ++c) {
      double& entry = to[columns[c] - first_];
      for (int k = 0; k < depth; ++k) entry -= *l++ * y[k];
    }
  }
}

void TargetPanel::updateBlocks(const Source& source, const Visit& visit) {
  const int* const columns = source.panel.rows + source.firstRow;
  const int columnCount = source.pastColumns - source.firstRow;
  const int firstBlock = (columns[0] - first_) / kBlock;
  const int blockCount = (columns[columnCount - 1] - first_) / kBlock - firstBlock + 1;
  packColumns(source, firstBlock, blockCount);

  const auto chunk = static_cast<std::size_t>(chunkOfRows(visit.end - visit.begin));
  for (std::size_t begin = 0; begin < visit.rows.size(); begin += chunk) {
    Visit part = visit;
    part.rows = visit.rows.subspan(begin, std::min(chunk, visit.rows.size() - begin));
    updateChunk(source, part, firstBlock, blockCount);
  }
}

/// Rows above a block's columns are left out there, as far as whole groups of them are.
void TargetPanel::updateChunk(const Source& source, const Visit& visit, int firstBlock,
                              int blockCount) {
  const std::size_t count = visit.rows.size();
  rows_.resize(count + kernel_.rowGroup - 1);
  for (std::size_t k = 0; k < count; ++k) {
    const int p = visit.rows[k];
    rows_[k] = {source.panel.tailRow(p) + visit.begin,
                row(place_[source.panel.rows[p]]) + std::ptrdiff_t{firstBlock} * kBlock};
  }
  fillUpGroup(count);
  std::size_t below = 0;
  for (int b = 0; b < blockCount; ++b) {
    const int firstColumn = first_ + (firstBlock + b) * kBlock;
    const auto lastOfGroup = [&] { return visit.rows[below + kernel_.rowGroup - 1]; };
    while (below + kernel_.rowGroup <= count && source.panel.rows[lastOfGroup()] < firstColumn) {
      below += kernel_.rowGroup;
    }
    kernel_.update(
        std::span<const RowPair>(rows_).subspan(below),
        columns_.data() + (std::ptrdiff_t{b} * source.panel.width + visit.begin) * kBlock,
        visit.end - visit.begin);
    for (std::size_t r = below; r < count; ++r) rows_[r].target += kBlock;
  }
}

/// L's entries in the rows of the source that are columns here; zero for a column that is not
/// among them.
void TargetPanel::packColumns(const Source& source, int firstBlock, int blockCount) {
  const int depth = source.panel.width;
  makeClearedRoom(columns_, std::ptrdiff_t{blockCount} * depth * kBlock);
  const double* const pivots = factor_.diagonal + source.panel.first;
  for (int p = source.firstRow; p < source.pastColumns; ++p) {
    const int column = source.panel.rows[p] - first_ - firstBlock * kBlock;
    double* const to =
        columns_.data() + Eigen::Index{column / kBlock} * depth * kBlock + column % kBlock;
    divideApart(source.panel.tailRow(p), pivots, depth, to, kBlock);
  }
}

/// The own block first, then the rows below it chunk by chunk.
bool TargetPanel::factorize() {
  makeClearedRoom(columns_, packedBefore(stride_));
  for (int column = 0; column < width_; column += kBlock) {
    packOwnColumns(column);
    subtractOwnColumns(column, column, width_);
    if (!factorizeBlock(column)) return false;
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

void TargetPanel::packOwnColumns(int firstColumn) {
  double* const to = columns_.data() + packedBefore(firstColumn);
  const double* const pivots = factor_.diagonal + first_;
  const int count = std::min(kBlock, width_ - firstColumn);
  for (int c = 0; c < count; ++c) {
    divideApart(row(firstColumn + c), pivots, firstColumn, to + c, kBlock);
  }
}

/// What the rows begin .. end-1 get in one block of columns from those before it.
void TargetPanel::subtractOwnColumns(int firstColumn, int begin, int end) {
  if (firstColumn == 0) return;
  rows_.clear();
  for (int r = begin; r < end; ++r) rows_.push_back({row(r), row(r) + firstColumn});
  fillUpGroup(rows_.size());
  kernel_.update(rows_, columns_.data() + packedBefore(firstColumn), firstColumn);
}

/// The same from the columns of the block itself.
void TargetPanel::substitute(int firstColumn, int begin, int end) {
  if (begin == end) return;
  rows_.clear();
  for (int r = begin; r < end; ++r) rows_.push_back({nullptr, row(r) + firstColumn});
  fillUpGroup(rows_.size());
  kernel_.substitute(rows_, ownTriangle(firstColumn));
}

double* TargetPanel::ownTriangle(int firstColumn) {
  return columns_.data() + packedBefore(firstColumn) + std::ptrdiff_t{firstColumn} * kBlock;
}

/// The triangle of one block of columns; leaves it divided in ownTriangle() for the rows below.
bool TargetPanel::factorizeBlock(int firstColumn) {
  const int count = std::min(kBlock, width_ - firstColumn);
  double* const pivots = factor_.diagonal + first_ + firstColumn;
  double* const columns = ownTriangle(firstColumn);
  for (int r = 0; r < count; ++r) {
    double* const entries = row(firstColumn + r) + firstColumn;
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
