// From a condition's selectors to vertices.
//
// Every selector gives an increasing list of vertices; A & B, A | B and !A are the intersection,
// union and complement of such lists.
#ifndef QELM_TOOLS_SELECTED_H
#define QELM_TOOLS_SELECTED_H

#include <optional>
#include <string>
#include <vector>

#include "conditions/conditions.h"
#include "conditions/mesh_index.h"

namespace qelm::tool {

struct Nearest {  ///< of near:X,Y,Z
  int vertex;
  double distance;
};

struct Selected {
  std::vector<int> vertices;              ///< in increasing order, each once, one at least
  std::vector<double> arc;                ///< n, the way along a loop: or curve:, NaN at vertices
                                          ///< on none; empty without such selectors
  const VertexArray* property = nullptr;  ///< of the last property:
  std::optional<Nearest> nearest;         ///< if the condition is near: alone
  std::vector<std::string> details;       ///< what the selectors found: "loop:1, 0.25 away"
  std::vector<std::string> notes;         ///< for the user, of selectors that find nothing
};

/// Throws RequestError if a selector names what the mesh has not, or if all selectors together find
/// nothing; FileError if the file of a curve cannot be read.
Selected select(MeshIndex& index, const Condition& condition);

}  // namespace qelm::tool

#endif
