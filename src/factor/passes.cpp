#include "factor/passes.h"

#include <algorithm>
#include <numeric>

#include "interface/index.h"

namespace qelm::factor {
namespace {

constexpr int kNoRowPath = -1;
// In place of a row path.
constexpr int kOnePass = -1;
constexpr int kInParts = -2;

}  // namespace

Passes::Passes(const RowPaths& paths, std::size_t rowCount)
    : paths_(paths), states_(rowCount), allPositions_(rowCount) {
  std::iota(allPositions_.begin(), allPositions_.end(), 0);
}

void Passes::assignPasses(std::span<const Descendant> descendants) {
  ++target_;
  passCount_ = 1;
  ascendingRows_.clear();
  deferred_.clear();
  findAscendingRows(descendants);
  if (ascendingRows_.empty()) return;
  rowPaths_.clear();
  listRowPaths(descendants);
  for (const int row : ascendingRows_) assignPassesOf(row);
  for (const RowPath& each : rowPaths_) passCount_ = std::max(passCount_, each.pass + 1);
}

/// Also finds the rows for which a descendant is split: kSplit is above every number.
void Passes::findAscendingRows(std::span<const Descendant> descendants) {
  for (const Descendant& descendant : descendants) {
    const auto paths = paths_.ofSupernode(descendant.supernode);
    for (int p = descendant.firstRow; p < descendant.panel.belowCount; ++p) {
      const int path = paths[asIndex(p)];
      RowState& row = state(descendant.panel.rowIndices[p]);
      if (row.target != target_) row = {target_, RowPaths::kSplit - 1, false, kNoRowPath};
      if (path > row.lastPath && !row.ascends) {
        row.ascends = true;
        ascendingRows_.push_back(descendant.panel.rowIndices[p]);
      }
      row.lastPath = path;
    }
  }
}

void Passes::listRowPaths(std::span<const Descendant> descendants) {
  rowPathOfUpdate_.clear();
  updateStarts_.clear();
  needsOnePass_.assign(descendants.size(), true);
  for (std::size_t d = 0; d < descendants.size(); ++d) {
    const Descendant& descendant = descendants[d];
    const auto paths = paths_.ofSupernode(descendant.supernode);
    updateStarts_.push_back(rowPathOfUpdate_.size());
    for (int p = descendant.firstRow; p < descendant.panel.belowCount; ++p) {
      const int row = descendant.panel.rowIndices[p];
      const int path = paths[asIndex(p)];
      if (!state(row).ascends) {
        rowPathOfUpdate_.push_back(kOnePass);
      } else if (path != RowPaths::kSplit) {
        rowPathOfUpdate_.push_back(extendRowPath(row, path, d));
        needsOnePass_[d] = false;
      } else {
        rowPathOfUpdate_.push_back(kInParts);
        needsOnePass_[d] = false;
        for (const auto& part : paths_.partsOf(descendant.supernode, row)) {
          extendRowPath(row, part.path, d);
        }
      }
    }
  }
}

/// Adds a descendant to the path with this number, and inserts the path if it is new: the list of a
/// row's paths is short and descends. All lists of a target together are shorter than the number of
/// L's entries in its rows, so that an int can index them.
int Passes::extendRowPath(int row, int number, std::size_t descendant) {
  int* link = &state(row).highestPath;
  while (*link != kNoRowPath && rowPath(*link).number > number) link = &rowPath(*link).next;
  if (*link == kNoRowPath || rowPath(*link).number != number) {
    const int next = *link;
    *link = asInt(rowPaths_.size());
    rowPaths_.push_back({number, descendant, descendant, 0, next});
    return asInt(rowPaths_.size()) - 1;
  }
  rowPath(*link).lastDescendant = descendant;
  return *link;
}

int Passes::rowPathOf(int row, int number) const {
  int found = states_[asIndex(row)].highestPath;
  while (rowPath(found).number != number) found = rowPath(found).next;
  return found;
}

void Passes::assignPassesOf(int row) {
  int pass = 0;
  std::size_t lastDescendant = 0;
  for (int k = state(row).highestPath; k != kNoRowPath; k = rowPath(k).next) {
    if (rowPath(k).firstDescendant < lastDescendant) ++pass;
    rowPath(k).pass = pass;
    lastDescendant = rowPath(k).lastDescendant;
  }
}

/// Collects a descendant's updates of the first pass, and defers the others.
void Passes::collectFirstPass(const Descendant& descendant, std::size_t index) {
  partRows_.clear();
  if (ascendingRows_.empty() || needsOnePass_[index]) {
    collectAll(descendant);
    return;
  }
  wholeRows_.clear();
  const int* rowPaths = rowPathOfUpdate_.data() + updateStarts_[index];
  for (int p = descendant.firstRow; p < descendant.panel.belowCount; ++p) {
    const int k = *rowPaths++;
    if (k == kInParts) {
      collectParts(descendant, index, p);
    } else if (k == kOnePass || rowPath(k).pass == 0) {
      wholeRows_.push_back(p);
    } else {
      deferred_.push_back({asInt(index), rowPath(k).pass, {p, 0, descendant.panel.width}});
    }
  }
  wholeRowsView_ = wholeRows_;
}

void Passes::collectAll(const Descendant& descendant) {
  wholeRowsView_ = std::span<const int>(allPositions_)
                       .first(asIndex(descendant.panel.belowCount))
                       .subspan(asIndex(descendant.firstRow));
}

/// Neighbouring parts in the same pass make one update.
void Passes::collectParts(const Descendant& descendant, std::size_t index, int position) {
  const int row = descendant.panel.rowIndices[position];
  const int width = descendant.panel.width;
  const auto parts = paths_.partsOf(descendant.supernode, row);
  const auto passOf = [&](const RowPaths::Part& part) {
    return rowPath(rowPathOf(row, part.path)).pass;
  };
  for (std::size_t k = 0; k < parts.size();) {
    const int begin = parts[k].beginColumn;
    const int pass = passOf(parts[k]);
    while (++k < parts.size() && passOf(parts[k]) == pass) {
    }
    const RowUpdate update = {position, begin, k < parts.size() ? parts[k].beginColumn : width};
    if (pass == 0) {
      collect(update, width);
    } else {
      deferred_.push_back({asInt(index), pass, update});
    }
  }
}

/// Collects the updates in this pass of the descendant of deferred_[from]. Returns the index of the
/// next descendant's first deferred update.
std::size_t Passes::collectDeferred(std::size_t from, int pass, int width) {
  wholeRows_.clear();
  partRows_.clear();
  std::size_t k = from;
  for (; k < deferred_.size() && deferred_[k].descendant == deferred_[from].descendant; ++k) {
    if (deferred_[k].pass == pass) collect(deferred_[k].update, width);
  }
  wholeRowsView_ = wholeRows_;
  return k;
}

void Passes::collect(const RowUpdate& update, int width) {
  if (update.beginColumn == 0 && update.endColumn == width) {
    wholeRows_.push_back(update.position);
  } else {
    partRows_.push_back(update);
  }
}

}  // namespace qelm::factor
