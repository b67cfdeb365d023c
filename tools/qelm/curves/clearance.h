// How far segments are from those of other pieces: a tree of boxes over the segments.
//
// A node's box holds its segments; its two children halve them at the middle of the box's longest
// axis. A question for the nearest segment keeps the least distance so far and passes over every
// node whose box is farther away, or whose segments all belong to pieces that do not count. The
// nearer child comes first, so that most of the tree is passed over: about log n nodes are seen of
// n segments.
#ifndef QELM_TOOLS_CLEARANCE_H
#define QELM_TOOLS_CLEARANCE_H

#include <cstddef>
#include <vector>

#include "mesh/box.h"
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

  /// The distance from a segment to the nearest one of another piece; the neighbouring pieces
  /// `before` and `after`, which share points with the segment's own, do not count. At most `most`.
  double clearance(const PieceSegment& segment, int before, int after, double most) const;

 private:
  struct Node {
    Box box;
    int piece;           ///< of all its segments, or kMixed
    std::size_t begin;   ///< of its segments
    std::size_t end;     ///< one after the last
    std::size_t second;  ///< its second child; the first is the next node. 0: a leaf
  };
  std::size_t build(std::size_t begin, std::size_t end);

  std::vector<PieceSegment> segments_;
  std::vector<Node> nodes_;
};

}  // namespace qelm::tool

#endif
