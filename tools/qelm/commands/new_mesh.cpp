#include "commands/new_mesh.h"

#include <fmt/format.h>

#include <cmath>
#include <vector>

#include "fields/verdict.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {

std::optional<double> parseTolerance(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  const auto value = parseDouble(trimmed(*text));
  if (!value || !std::isfinite(*value) || *value < 0)
    throw UsageError(fmt::format("--tolerance {}: a distance is needed, 0 or larger", *text));
  return value;
}

int noteSinglePrecision(const Mesh& mesh, MeshFormat format, const std::string& output,
                        const Console& console) {
  const int lost = isSinglePrecision(format) ? lostToSinglePrecision(mesh) : 0;
  if (lost > 0)
    console.note(fmt::format(
        "{}: {} holds single precision, in which neighbouring vertices fall together: {} of {} "
        "triangles are lost; write .ply or .obj, or move the mesh to the origin",
        output, format == MeshFormat::kStl ? "STL" : "binary OFF", lost, mesh.triangleCount()));
  return lost;
}

void noteVerdict(const Mesh& mesh, const Console& console) {
  const std::vector<int> tags = leastTags(mesh);
  const Verdict verdict = verdictOn(mesh, tags, reportOn(mesh, tags));
  if (verdict.grade != Grade::kFine) console.note("the result " + verdict.text);
}

}  // namespace qelm::tool
