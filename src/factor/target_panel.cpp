// A row is computed from left to right, all rows a block of columns at a time. The panel is kept
// row after row: rows are then taken in any order, which the updates of different paths need, while
// a block of columns is one run of memory. Where the columns that a source has in common with the
// target leave gaps, the gaps are filled with zeros: x - 0 * y is x, since no entry is ever -0.0
// (it starts from 0.0 plus something, and a difference of two equal numbers is 0.0).
#include "factor/target_panel.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "factor/quotients.h"

namespace qelm::factor {
namespace {

/// Copies `count` numbers, faster than a call of memcpy for the few that most supernodes are wide.
void copyFew(const double* from, int count, double* to) {
  switch (count) {
    case 0:
      return;
    case 1:
      std::memcpy(to, from, sizeof(double));
      return;
    case 2:
      std::memcpy(to, from, 2 * sizeof(double));
      return;
    case 3:
      std::memcpy(to, from, 3 * sizeof(double));
      return;
    case 4:
      std::memcpy(to, from, 4 * sizeof(double));
      return;
    default:
      std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof(double));
  }
}

/// At least `count` numbers, the first `count` of them zero. What was there is freed before more is
/// taken: the panels of small meshes are large beside their factors.
void clearedRoom(std::vector<double>& numbers, std::ptrdiff_t count) {
  if (std::ssize(numbers) < count) {
    std::vector<double>().swap(numbers);
    numbers.resize(static_cast<std::size_t>(count));
  }
  std::fill_n(numbers.begin(), count, 0.0);
}

}  // namespace

void TargetPanel::load(const Panel& panel) {
  first_ = panel.first;
  width_ = panel.width;
  rowCount_ = panel.width + panel.tailSize;
  stride_ = (width_ + kBlock - 1) / kBlock * kBlock;
  clearedRoom(values_, std::ptrdiff_t{rowCount_} * stride_);
  for (int r = 0; r < width_; ++r) {
    copyFew(panel.triangleRow(r), r, row(r));
    row(r)[r] = factor_.diagonal[first_ + r];
    place_[first_ + r] = r;
  }
  for (int p = 0; p < panel.tailSize; ++p) {
    copyFew(panel.tailRow(p), width_, row(width_ + p));
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
  const int* const columns = source.panel.rows + source.firstRow;
  const int columnCount = source.pastColumns - source.firstRow;
  const int firstBlock = (columns[0] - first_) / kBlock;
  const int blockCount = (columns[columnCount - 1] - first_) / kBlock - firstBlock + 1;
  packColumns(source, firstBlock, blockCount);

  const std::size_t count = visit.rows.size();
  rows_.resize(count + kernel_.rowGroup - 1);
  for (std::size_t k = 0; k < count; ++k) {
    const int p = visit.rows[k];
    rows_[k] = {source.panel.tailRow(p) + visit.begin,
                row(place_[source.panel.rows[p]]) + firstBlock * kBlock};
  }
  fillUpGroup(count);
  const int depth = source.panel.width;
  for (int b = 0; b < blockCount; ++b) {
    kernel_.update(rows_, columns_.data() + (b * depth + visit.begin) * kBlock,
                   visit.end - visit.begin);
    for (std::size_t r = 0; r < count; ++r) rows_[r].target += kBlock;
  }
}

/// L's entries in the rows of the source that are columns here; zero for a column that is not
/// among them.
void TargetPanel::packColumns(const Source& source, int firstBlock, int blockCount) {
  const int depth = source.panel.width;
  clearedRoom(columns_, std::ptrdiff_t{blockCount} * depth * kBlock);
  const double* const pivots = factor_.diagonal + source.panel.first;
  for (int p = source.firstRow; p < source.pastColumns; ++p) {
    const int column = source.panel.rows[p] - first_ - firstBlock * kBlock;
    double* const to =
        columns_.data() + Eigen::Index{column / kBlock} * depth * kBlock + column % kBlock;
    divideApart(source.panel.tailRow(p), pivots, depth, to, kBlock);
  }
}

bool TargetPanel::factorize() {
  for (int column = 0; column < width_; column += kBlock) {
    if (column > 0) {
      packOwnColumns(column);
      rows_.clear();
      for (int r = column; r < rowCount_; ++r) rows_.push_back({row(r), row(r) + column});
      fillUpGroup(rows_.size());
      kernel_.update(rows_, columns_.data(), column);
    }
    if (!factorizeBlock(column)) return false;
    const int below = std::min(column + kBlock, width_);
    if (below < rowCount_) {
      rows_.clear();
      for (int r = below; r < rowCount_; ++r) rows_.push_back({nullptr, row(r) + column});
      fillUpGroup(rows_.size());
      kernel_.substitute(rows_, columns_.data());
    }
  }
  return true;
}

void TargetPanel::packOwnColumns(int firstColumn) {
  clearedRoom(columns_, std::ptrdiff_t{firstColumn} * kBlock);
  const double* const pivots = factor_.diagonal + first_;
  const int count = std::min(kBlock, width_ - firstColumn);
  for (int c = 0; c < count; ++c) {
    divideApart(row(firstColumn + c), pivots, firstColumn, columns_.data() + c, kBlock);
  }
}

/// The triangle of one block of columns; leaves it divided in columns_ for the rows below.
bool TargetPanel::factorizeBlock(int firstColumn) {
  clearedRoom(columns_, kBlock * kBlock);
  const int count = std::min(kBlock, width_ - firstColumn);
  double* const pivots = factor_.diagonal + first_ + firstColumn;
  double* const columns = columns_.data();
  for (int r = 0; r < count; ++r) {
    double* const entries = row(firstColumn + r) + firstColumn;
    for (int c = 0; c <= r; ++c) {
      if (c > 0) columns[(c - 1) * kBlock + r] = entries[c - 1] / pivots[c - 1];
      const double* const other = columns + c;
      for (int k = 0; k < c; ++k) entries[c] -= other[k * kBlock] * entries[k];
    }
    pivots[r] = entries[r];
    if (pivots[r] == 0 || !std::isfinite(pivots[r])) return false;
  }
  return true;
}

}  // namespace qelm::factor
