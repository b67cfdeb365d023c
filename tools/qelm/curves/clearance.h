// How far segments are from those of other pieces.
#ifndef QELM_TOOLS_CLEARANCE_H
#define QELM_TOOLS_CLEARANCE_H

#include <cstddef>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

struct PieceSegment {
  Point from, to;
  int piece;
};

/// The distance of two segments, ends included.
double distanceBetween(const PieceSegment& a, const PieceSegment& b);

/// Segments by the pieces that they belong to, which are numbered from 0.
class ClearanceTree {
 public:
  explicit ClearanceTree(std::vector<PieceSegment> segments);

  /// From a segment to the nearest one of another piece that is not `before` or `after`, which
  /// it shares points with; `most` where there is none nearer than that.
  double clearance(const PieceSegment& segment, int before, int after, double most) const;

 private:
  struct Box {
    Point low, high;
    int piece;           ///< of all segments inside, or kMixed
    std::size_t begin;   ///< of its segments
    std::size_t end;     ///< one after the last
    std::size_t second;  ///< the second half's box, the first's comes next; 0: no halves
  };
  std::size_t build(std::size_t begin, std::size_t end);
  static double distance(const Box& box, const Box& to);

  std::vector<PieceSegment> segments_;
  std::vector<Box> boxes_;
};

}  // namespace qelm::tool

#endif
