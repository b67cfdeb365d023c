#include "fields/verdict.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

// A smaller error is below what the mesh itself is good for.
constexpr double kNoError = 1e-6;
// With a larger error not one digit is left.
constexpr double kNothingLeft = 0.1;

/// Rounding by the worst quality bounds the error: in no measurement was it exceeded. So a small
/// bound makes building the system needless.
bool isBeyondDoubt(const QelmMeshReport& report) {
  return std::numeric_limits<double>::epsilon() / report.worstQuality <= kNoError;
}

void addUnused(const Mesh& mesh, QelmFinding& finding) {
  const std::vector<bool> used = usedVertices(mesh);
  finding.count = std::count(used.begin(), used.end(), false);
  if (finding.count > 0) finding.first = std::find(used.begin(), used.end(), false) - used.begin();
}

std::string describeWorst(const Mesh& mesh) {
  const std::vector<int> tags(asIndex(mesh.vertexCount()), 0);
  return describeTriangle(mesh, asInt(reportOn(mesh, tags).worstTriangle));
}

}  // namespace

QelmMeshReport reportOn(const Mesh& mesh, std::span<const int> tags, int* code) {
  const UsedPart part = usedPart(mesh);
  const std::vector<int> ownTags = part.of(tags);
  QelmMeshReport report = {};
  const int status =
      qelmcheckTagged(part.mesh.vertexCount(), part.mesh.vertices.data(), part.mesh.triangleCount(),
                      part.mesh.triangles.data(), ownTags.data(), &report);
  if (code != nullptr) *code = status;
  for (QelmFinding* finding : {&report.notFinite, &report.untaggedPart, &report.part,
                               &report.boundaryLoop, &report.coincidentVertex})
    if (finding->count > 0) finding->first = part.vertices[asIndex(finding->first)];
  addUnused(mesh, report.unusedVertex);
  return report;
}

double measuredError(const FieldSystem& system, const Mesh& mesh) {
  const double error = system.constantError();
  if (!(error < kNothingLeft))
    throw SingularError(
        fmt::format("rounding leaves nothing of a field here: {} is the worst; mend the mesh "
                    "with 'qelm repair', or move one that is far away to the origin",
                    describeWorst(mesh)));
  return error > kNoError ? error : 0;
}

std::string describeError(double error, const Mesh& mesh) {
  return fmt::format(
      "will work, but with an error of about {:.0e} of the largest value: {} is too thin, or too "
      "small for its distance from the origin",
      error, describeWorst(mesh));
}

Verdict verdictOn(const Mesh& mesh, std::span<const int> tags, const QelmMeshReport& report,
                  bool strict) {
  try {
    checkMesh(mesh, {false, strict});
    checkEveryPartIsFixed(mesh, tags);
    const double error =
        isBeyondDoubt(report) ? 0 : measuredError(FieldSystem(mesh, tags, false), mesh);
    if (error == 0) return {Grade::kFine, "fine", 0, kExitOk};
    return {Grade::kWithError, describeError(error, mesh), error, kExitOk};
  } catch (const InputError& problem) {
    return {Grade::kWillNotWork, fmt::format("will not work: {}", problem.what()), 0,
            problem.code()};
  }
}

std::vector<int> leastTags(const Mesh& mesh) {
  const std::vector<int> lowest = lowestOfPart(mesh);
  std::vector<int> tags(lowest.size(), 0);
  for (const int v : lowest) tags[asIndex(v)] = 1;
  return tags;
}

}  // namespace qelm::tool
