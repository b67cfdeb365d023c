// Of a row's paths the one with the highest number comes first, each upwards. Where sources in
// ascending order meet a row's paths in descending order, one pass over the sources serves the
// row. Otherwise each of its paths goes into the first pass in which the paths before it have
// been done:
//
//   sources             0  1  2  3
//   row a: path         2  2  1  0      0 1 2 3: one pass
//   row b: path         0  .  1  0      wanted: 2, then 0 3; passes 2 | 0 3
//
// Few panels need more than two passes. Where a supernode is split for a row, its parts can fall
// into different passes.
#include "factor/passes.h"

#include <algorithm>
#include <numeric>

namespace qelm::factor {
namespace {

constexpr int kNoRun = -1;
constexpr int kAgrees = -1;
constexpr int kInParts = -2;

}  // namespace

Passes::Passes(const RowPaths& paths, std::size_t rowCount)
    : paths_(paths), rows_(rowCount), ascending_(rowCount) {
  std::iota(ascending_.begin(), ascending_.end(), 0);
}

void Passes::arrange(std::span<const Source> sources) {
  ++target_;
  passCount_ = 1;
  disagreeing_.clear();
  later_.clear();
  findDisagreeing(sources);
  if (disagreeing_.empty()) return;
  runs_.clear();
  listRuns(sources);
  for (const int r : disagreeing_) assignPasses(r);
  for (const Run& each : runs_) passCount_ = std::max(passCount_, each.pass + 1);
}

void Passes::findDisagreeing(std::span<const Source> sources) {
  for (const Source& source : sources) {
    const auto paths = paths_.ofTail(source.supernode);
    for (int p = source.firstRow; p < source.panel.tailSize; ++p) {
      const int path = paths[static_cast<std::size_t>(p)];
      Row& state = row(source.panel.rows[p]);
      if (state.target != target_) state = {target_, RowPaths::kSplit - 1, false, kNoRun};
      if (path > state.lastPath && !state.disagrees) {
        state.disagrees = true;
        disagreeing_.push_back(source.panel.rows[p]);
      }
      state.lastPath = path;
    }
  }
}

void Passes::listRuns(std::span<const Source> sources) {
  runOfUpdate_.clear();
  updateStarts_.clear();
  allAgree_.assign(sources.size(), true);
  for (std::size_t s = 0; s < sources.size(); ++s) {
    const Source& source = sources[s];
    const auto paths = paths_.ofTail(source.supernode);
    updateStarts_.push_back(runOfUpdate_.size());
    for (int p = source.firstRow; p < source.panel.tailSize; ++p) {
      const int r = source.panel.rows[p];
      const int path = paths[static_cast<std::size_t>(p)];
      if (!row(r).disagrees) {
        runOfUpdate_.push_back(kAgrees);
      } else if (path != RowPaths::kSplit) {
        runOfUpdate_.push_back(extendRun(r, path, s));
        allAgree_[s] = false;
      } else {
        runOfUpdate_.push_back(kInParts);
        allAgree_[s] = false;
        for (const auto& part : paths_.partsOf(source.supernode, r)) extendRun(r, part.path, s);
      }
    }
  }
}

/// Runs of a row are few; the highest path comes first. All runs of a target together are fewer
/// than L's entries in its rows, so that an int can count them.
int Passes::extendRun(int r, int path, std::size_t source) {
  int* link = &row(r).runs;
  while (*link != kNoRun && run(*link).path > path) link = &run(*link).next;
  if (*link == kNoRun || run(*link).path != path) {
    const int next = *link;
    *link = static_cast<int>(runs_.size());
    runs_.push_back({path, source, source, 0, next});
    return static_cast<int>(runs_.size()) - 1;
  }
  run(*link).last = source;
  return *link;
}

int Passes::runOf(int r, int path) const {
  int found = rows_[static_cast<std::size_t>(r)].runs;
  while (run(found).path != path) found = run(found).next;
  return found;
}

void Passes::assignPasses(int r) {
  int pass = 0;
  std::size_t lastSource = 0;
  for (int k = row(r).runs; k != kNoRun; k = run(k).next) {
    if (run(k).first < lastSource) ++pass;
    run(k).pass = pass;
    lastSource = run(k).last;
  }
}

/// What a source has for the first pass; the rest goes to later_.
void Passes::collectFirst(const Source& source, std::size_t index) {
  alone_.clear();
  if (disagreeing_.empty() || allAgree_[index]) {
    collectAll(source);
    return;
  }
  together_.clear();
  const int* runs = runOfUpdate_.data() + updateStarts_[index];
  for (int p = source.firstRow; p < source.panel.tailSize; ++p) {
    const int r = *runs++;
    if (r == kInParts) {
      collectParts(source, index, p);
    } else if (r == kAgrees || run(r).pass == 0) {
      together_.push_back(p);
    } else {
      later_.push_back({static_cast<int>(index), run(r).pass, {p, 0, source.panel.width}});
    }
  }
  togetherView_ = together_;
}

void Passes::collectAll(const Source& source) {
  togetherView_ = std::span<const int>(ascending_)
                      .first(static_cast<std::size_t>(source.panel.tailSize))
                      .subspan(static_cast<std::size_t>(source.firstRow));
}

/// Parts of one pass lie side by side.
void Passes::collectParts(const Source& source, std::size_t index, int position) {
  const int r = source.panel.rows[position];
  const auto parts = paths_.partsOf(source.supernode, r);
  for (std::size_t k = 0; k < parts.size();) {
    const int begin = parts[k].begin;
    const int pass = run(runOf(r, parts[k].path)).pass;
    while (++k < parts.size() && run(runOf(r, parts[k].path)).pass == pass) {
    }
    const Part part = {position, begin, k < parts.size() ? parts[k].begin : source.panel.width};
    if (pass == 0) {
      collect(part, source.panel.width);
    } else {
      later_.push_back({static_cast<int>(index), pass, part});
    }
  }
}

/// What the source of later_[from] has for this pass. Returns where the next source begins.
std::size_t Passes::collectLater(std::size_t from, int pass, int width) {
  together_.clear();
  alone_.clear();
  std::size_t k = from;
  for (; k < later_.size() && later_[k].source == later_[from].source; ++k) {
    if (later_[k].pass == pass) collect(later_[k].part, width);
  }
  togetherView_ = together_;
  return k;
}

void Passes::collect(const Part& part, int width) {
  if (part.begin == 0 && part.end == width) {
    together_.push_back(part.position);
  } else {
    alone_.push_back(part);
  }
}

}  // namespace qelm::factor
