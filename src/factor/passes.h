// In which order a supernode's panel takes the updates of its descendants.
#ifndef QELM_FACTOR_PASSES_H
#define QELM_FACTOR_PASSES_H

#include <cstddef>
#include <span>
#include <vector>

#include "factor/factor_arrays.h"
#include "factor/row_paths.h"

namespace qelm::factor {

/// A supernode with rows among the columns of the one whose turn it is, the target.
struct Source {
  int supernode;
  Panel panel;
  int firstRow;     ///< position in the panel's tail: the first row in the target's columns
  int pastColumns;  ///< position of the first row past them
};

/// Some rows of a source that take their updates together, or one row that takes those of some
/// of the source's columns only.
struct Visit {
  std::size_t source;  ///< index among the target's sources
  int begin;           ///< the columns begin .. end-1 of the source
  int end;
  std::span<const int> rows;  ///< positions in the source's tail; valid until the next visit
};

/// Sorts the updates of one target after the other into passes over its sources.
class Passes {
 public:
  /// For a matrix of so many rows.
  Passes(const RowPaths& paths, std::size_t rowCount);

  /// Calls perform(visit) for one visit after the other, so that every row gets its updates in
  /// the order of its paths. Sources come in ascending order, and again in further passes until
  /// every row has had all its updates.
  template <class Perform>
  void visitAll(std::span<const Source> sources, Perform perform) {
    arrange(sources);
    const auto performCollected = [&](std::size_t s) {
      if (!togetherView_.empty()) perform(Visit{s, 0, sources[s].panel.width, togetherView_});
      for (const Part& part : alone_) {
        perform(Visit{s, part.begin, part.end, {&part.position, 1}});
      }
    };
    for (std::size_t s = 0; s < sources.size(); ++s) {
      collectFirst(sources[s], s);
      performCollected(s);
    }
    for (int pass = 1; pass < passCount_; ++pass) {
      for (std::size_t k = 0; k < later_.size();) {
        const auto s = static_cast<std::size_t>(later_[k].source);
        k = collectLater(k, pass, sources[s].panel.width);
        performCollected(s);
      }
    }
  }

 private:
  /// The sources that lie on one path of a row whose paths do not agree with the sources' order.
  struct Run {
    int path;
    std::size_t first;  ///< source
    std::size_t last;
    int pass;
    int next;  ///< the run with the next lower path
  };
  struct Row {
    int target = -1;  ///< the last target that had this row
    int lastPath = 0;
    bool disagrees = false;
    int runs = -1;  ///< the one with the highest path
  };
  /// The columns of a source that one row subtracts in one pass.
  struct Part {
    int position;  ///< of the row
    int begin;
    int end;
  };
  /// A part of a pass after the first.
  struct Later {
    int source;  ///< a supernode's sources are fewer than its rows of L, which an int can count
    int pass;
    Part part;
  };

  void arrange(std::span<const Source> sources);
  void findDisagreeing(std::span<const Source> sources);
  void listRuns(std::span<const Source> sources);
  int extendRun(int row, int path, std::size_t source);
  int runOf(int row, int path) const;
  void assignPasses(int row);
  void collectFirst(const Source& source, std::size_t index);
  void collectAll(const Source& source);
  void collectParts(const Source& source, std::size_t index, int position);
  std::size_t collectLater(std::size_t from, int pass, int width);
  void collect(const Part& part, int width);

  Row& row(int r) { return rows_[static_cast<std::size_t>(r)]; }
  Run& run(int r) { return runs_[static_cast<std::size_t>(r)]; }
  const Run& run(int r) const { return runs_[static_cast<std::size_t>(r)]; }

  const RowPaths& paths_;
  std::vector<Row> rows_;
  int target_ = -1;
  int passCount_ = 0;
  std::vector<int> disagreeing_;           ///< rows
  std::vector<Run> runs_;                  ///< of those rows
  std::vector<int> runOfUpdate_;           ///< of each source's rows in turn
  std::vector<std::size_t> updateStarts_;  ///< where a source's are
  std::vector<bool> allAgree_;             ///< whether all rows of a source do
  std::vector<int> ascending_;             ///< 0, 1, 2, ...
  std::span<const int> togetherView_;      ///< of one of these two
  std::vector<int> together_;
  std::vector<Part> alone_;
  std::vector<Later> later_;  ///< source after source
};

}  // namespace qelm::factor

#endif  // QELM_FACTOR_PASSES_H
