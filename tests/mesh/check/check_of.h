// Calls of the mesh check, and comparisons of what it reports.
#ifndef QELM_TESTS_MESH_CHECK_OF_H
#define QELM_TESTS_MESH_CHECK_OF_H

#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <string>
#include <utility>

#include "qelm.h"
#include "support/meshes.h"

namespace qelm::test {

struct Checked {
  int code;
  QelmMeshReport report;
};

inline Checked check(const Mesh& mesh) {
  Checked checked = {};
  checked.code = qelmcheckTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                                 mesh.triangles.data(), mesh.tags.data(), &checked.report);
  return checked;
}

/// Every finding with its name, in the order of the record.
inline auto findingsOf(const QelmMeshReport& r) {
  return std::to_array<std::pair<const char*, QelmFinding>>(
      {{"indexOutOfRange", r.indexOutOfRange},
       {"repeatedVertex", r.repeatedVertex},
       {"unusedVertex", r.unusedVertex},
       {"notFinite", r.notFinite},
       {"nearZeroArea", r.nearZeroArea},
       {"sizeOutOfRange", r.sizeOutOfRange},
       {"untaggedPart", r.untaggedPart},
       {"part", r.part},
       {"taggedVertex", r.taggedVertex},
       {"crowdedEdge", r.crowdedEdge},
       {"boundaryLoop", r.boundaryLoop},
       {"opposedEdge", r.opposedEdge},
       {"repeatedTriangle", r.repeatedTriangle},
       {"coincidentVertex", r.coincidentVertex}});
}

/// "name count (first)" of every finding that was made.
inline std::string summary(const QelmMeshReport& report) {
  std::ostringstream text;
  for (const auto& [name, finding] : findingsOf(report)) {
    if (finding.count == 0 && finding.first == -1) continue;
    if (text.tellp() > 0) text << ", ";
    text << name << " " << finding.count << " (" << finding.first << ")";
  }
  return text.str();
}

}  // namespace qelm::test

#endif  // QELM_TESTS_MESH_CHECK_OF_H
