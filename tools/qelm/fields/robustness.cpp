#include "fields/robustness.h"

#include <fmt/format.h>

#include "mesh/used_part.h"
#include "text/error.h"

namespace qelm::tool {

Construction parseConstruction(const std::string& text) {
  if (text.empty()) return Construction::plain;
  if (text == "true") return Construction::robust;
  if (text == "auto") return Construction::automatic;
  throw UsageError("--robust takes nothing or auto, not '" + text + "'");
}

std::optional<QelmRobustReport> robustReport(const Mesh& mesh, std::span<const int> tags) {
  QelmRobustReport report = {};
  const UsedPart part = usedPart(mesh);
  const std::vector<int> ownTags = part.of(tags);
  const int status = qelmcheckRobustTagged(part.mesh.vertexCount(), part.mesh.vertices.data(),
                                           part.mesh.triangleCount(), part.mesh.triangles.data(),
                                           ownTags.data(), &report);
  if (status != QELM_STATUS_OK) return std::nullopt;
  return report;
}

std::string describe(const QelmRobustReport& report) {
  const auto counted = [](std::int64_t count, const char* one, const char* many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
  };
  return counted(report.notDelaunayEdges, "edge", "edges") + " not Delaunay, " +
         counted(report.flatTriangles, "triangle", "triangles") + " without height, " +
         counted(report.flips, "flip", "flips");
}

nlohmann::ordered_json robustJson(const QelmRobustReport& report) {
  return {{"changed", report.changed != 0},
          {"sheets", report.sheets},
          {"notDelaunayEdges", report.notDelaunayEdges},
          {"flatTriangles", report.flatTriangles},
          {"flips", report.flips}};
}

}  // namespace qelm::tool
