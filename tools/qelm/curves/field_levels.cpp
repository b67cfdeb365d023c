#include "curves/field_levels.h"

#include <fmt/format.h>

#include "curves/spacing.h"
#include "curves/through.h"
#include "fields/field_range.h"
#include "mesh_files/load_mesh.h"

namespace qelm::tool {

std::vector<double> levelsOf(const LevelChoice& choice, const SolvedField& solved, std::size_t k,
                             const Console& console) {
  std::vector<double> more;
  if (choice.spacing() > 0)
    more = naming(solved.meshName,
                  [&] { return spacedLevels(solved.mesh, solved.field(k), choice.spacing()); });
  for (const Point& p : choice.through()) {
    const PointOnMesh nearest = nearestOnMesh(solved.mesh, solved.field(k), p);
    more.push_back(nearest.value);
    console.line(fmt::format("through  near:{},{},{} = {}, {:.6g} away", p[0], p[1], p[2],
                             nearest.value, nearest.distance));
  }
  const FieldRange range = rangeOf(solved.field(k));
  return naming(solved.meshName,
                [&] { return choice.levels(range.low, range.high, console, more); });
}

}  // namespace qelm::tool
