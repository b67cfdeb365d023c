// The grammar of boundary conditions: SELECTOR=VALUE[,VALUE...][:TAG].
#ifndef QELM_TOOLS_CONDITIONS_H
#define QELM_TOOLS_CONDITIONS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

struct VertexList {  ///< vertex:I[,I...]
  std::vector<long long> vertices;
};
struct LoopNumber {  ///< loop:K
  long long number;
};
struct WholeBoundary {};  ///< boundary
struct NearestTo {        ///< near:X,Y,Z
  Point point;
};
struct Box {  ///< box:X0,Y0,Z0,X1,Y1,Z1, any two opposite corners
  Point low, high;
};
using Selector = std::variant<VertexList, LoopNumber, WholeBoundary, NearestTo, Box>;

struct Condition {
  std::string text;  ///< the selector as written, for messages
  Selector selector;
  std::vector<double> values;  ///< one for each field; a single one is for all
  int tag = 1;                 ///< 1, 2 or 3: the library treats all alike
};

/// "0,1" as it would be written.
std::string describeValues(const Condition& condition);

/// How many fields the conditions ask for. Throws UsageError when they disagree.
std::size_t fieldCount(const std::vector<Condition>& conditions);

/// The library's marks for vertices that are held: 1, 2 and 3.
std::optional<int> parseTag(std::string_view text);

/// Throws UsageError that quotes `text`.
Condition parseCondition(const std::string& text);

}  // namespace qelm::tool

#endif
