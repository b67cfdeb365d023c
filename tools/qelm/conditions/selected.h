// From a condition's selectors to vertices.
#ifndef QELM_TOOLS_SELECTED_H
#define QELM_TOOLS_SELECTED_H

#include <optional>
#include <string>
#include <vector>

#include "conditions/conditions.h"
#include "conditions/mesh_index.h"

namespace qelm::tool {

struct Nearest {  ///< what near:X,Y,Z took
  int vertex;
  double distance;
};

struct Selected {
  std::vector<int> vertices;              ///< in increasing order, each once, one at least
  std::vector<double> arc;                ///< n; NaN off every loop: and curve:. None without those
  const VertexArray* property = nullptr;  ///< the last that was named
  std::optional<Nearest> nearest;         ///< where near: stands alone
  std::vector<std::string> details;       ///< what the selectors found: "loop:1, 0.25 away"
  std::vector<std::string> notes;         ///< for the user, of selectors that find nothing
};

/// Throws RequestError when a selector names what the mesh has not, or all of them together select
/// nothing; FileError for the file of a curve.
Selected select(MeshIndex& index, const Condition& condition);

}  // namespace qelm::tool

#endif
