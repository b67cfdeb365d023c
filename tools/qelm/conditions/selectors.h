// Which vertices a condition means: selectors, joined by & | ! and brackets.
#ifndef QELM_TOOLS_SELECTORS_H
#define QELM_TOOLS_SELECTORS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "mesh/box.h"
#include "mesh/mesh.h"

namespace qelm::tool {

struct VertexRange {
  long long first, last;  ///< both included
};
struct VertexList {  ///< vertex:I[,I...], where I may be I-I
  std::vector<VertexRange> ranges;
};
struct LoopNumber {  ///< loop:K
  long long number;
};
struct LoopNear {  ///< loop:near:X,Y,Z
  Point point;
};
struct WholeBoundary {};  ///< boundary
struct NearestTo {        ///< near:X,Y,Z
  Point point;
};
struct Sphere {  ///< sphere:X,Y,Z,R
  Point centre;
  double radius;
};
struct BoxSide {  ///< xmin, xmax, ymin and so on
  std::size_t axis;
  bool high;
};
struct Plane {  ///< plane:X,Y,Z,NX,NY,NZ[,T], above:X,Y,Z,NX,NY,NZ and below:
  enum class Side { on, above, below };
  Side side;
  Point point;
  Point normal;                     ///< not zero
  std::optional<double> tolerance;  ///< none: MeshIndex::tolerance()
};
struct PartNumber {  ///< part:K
  long long number;
};
struct PartNear {  ///< part:near:X,Y,Z
  Point point;
};
struct GroupName {  ///< group:NAME
  std::string name;
};
struct MaterialName {  ///< material:NAME
  std::string name;
};
struct PropertyName {  ///< property:NAME
  std::string name;
};
struct FeatureAngle {  ///< feature:ANGLE
  double degrees;
};
struct AlongCurve {  ///< curve:FILE
  std::string file;
};

/// Box is box:X0,Y0,Z0,X1,Y1,Z1, any two opposite corners.
using Selector = std::variant<VertexList, LoopNumber, LoopNear, WholeBoundary, NearestTo, Box,
                              Sphere, BoxSide, Plane, PartNumber, PartNear, GroupName, MaterialName,
                              PropertyName, FeatureAngle, AlongCurve>;

/// An expression of selectors: a tree.
struct SelectorTree {
  enum class Kind { leaf, all, any, none };  ///< a selector, A & B, A | B, !A
  Kind kind = Kind::leaf;
  Selector selector;                ///< of a leaf
  std::string text;                 ///< of a leaf, as written
  std::vector<SelectorTree> parts;  ///< A and B
};

/// Throws UsageError that quotes `condition`, of which `text` is the part before its "=".
SelectorTree parseSelectors(std::string_view text, std::string_view condition);

/// Calls action(leaf) for each selector, from left to right.
template <class Action>
void forEachSelector(const SelectorTree& tree, const Action& action) {
  if (tree.kind == SelectorTree::Kind::leaf) action(tree);
  for (const SelectorTree& part : tree.parts) forEachSelector(part, action);
}

/// The number in `word`; throws UsageError that quotes `condition` unless it is a finite one.
double finiteNumber(std::string_view word, std::string_view condition);

}  // namespace qelm::tool

#endif
