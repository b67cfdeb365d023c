// Boundary conditions applied to a mesh: which vertices are prescribed, and at which values.
#ifndef QELM_TOOLS_PRESCRIBED_H
#define QELM_TOOLS_PRESCRIBED_H

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "conditions/conditions.h"
#include "conditions/selected.h"
#include "conditions/vertex_csv.h"
#include "mesh/mesh.h"

namespace qelm::tool {

struct Prescribed {
  std::vector<int> tags;          ///< n; 1, 2 or 3 at prescribed vertices, 0 at free ones
  std::size_t fieldCount = 1;     ///< c
  std::vector<double> values;     ///< c * n, field after field; 0 at free vertices
  std::vector<int> prescribedBy;  ///< n; 0 at free vertices, 1 where a file prescribes, 2 + k
                                  ///< where condition k does
  std::vector<int> selected;      ///< for each condition how many vertices it selects
  std::vector<std::optional<Nearest>> nearest;    ///< for each condition that is near: alone
  std::vector<std::vector<std::string>> details;  ///< for each condition what its selectors found
  std::vector<std::string> notes;                 ///< for the user, such as conditions that overlap
  int fixedCount = 0;
};

/// Applies the values of a file first, then the conditions in order. Where conditions overlap with
/// different values the later one counts, and a note names the first such vertex. Vertices in no
/// triangle are not selected; a note counts those that the file prescribes.
///
/// Throws RequestError if a condition names what the mesh has not or selects nothing, or if a value
/// is not finite at a vertex; UsageError if the conditions disagree about the number of fields.
Prescribed prescribe(const Mesh& mesh, const std::vector<Condition>& conditions,
                     std::span<const FixedVertex> fromFile = {});

}  // namespace qelm::tool

#endif
