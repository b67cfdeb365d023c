// Boundary conditions applied to a mesh.
#ifndef QELM_TOOLS_SELECTION_H
#define QELM_TOOLS_SELECTION_H

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "conditions/conditions.h"
#include "conditions/vertex_csv.h"
#include "mesh/mesh.h"

namespace qelm::tool {

struct Nearest {  ///< what near:X,Y,Z took
  int vertex;
  double distance;
};

struct Prescribed {
  std::vector<int> tags;       ///< n; 1, 2 or 3 at fixed vertices, else 0
  std::size_t fieldCount = 1;  ///< c
  std::vector<double> values;  ///< c * n, field after field; 0 at free vertices
  std::vector<int> heldBy;     ///< n; 0 at free vertices, 1 where a file holds, 2 + k where
                               ///< condition k does
  std::vector<int> selected;   ///< for each condition how many vertices it selects
  std::vector<std::optional<Nearest>> nearest;  ///< for each condition, of near:
  std::vector<std::string> notes;               ///< for the user, such as conditions that overlap
  int fixedCount = 0;
};

/// Applies first what a file holds, then the conditions in order; where they overlap with different
/// values the later one holds and a note names the first such vertex.
///
/// Vertices in no triangle are not selected, and a note counts those that the file fixes.
///
/// Throws RequestError when a condition names what the mesh has not, or selects
/// nothing; UsageError when the conditions disagree about the number of fields.
Prescribed prescribe(const Mesh& mesh, const std::vector<Condition>& conditions,
                     std::span<const FixedVertex> fromFile = {});

}  // namespace qelm::tool

#endif
