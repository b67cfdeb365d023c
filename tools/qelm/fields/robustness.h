// Which of the library's two matrices a field comes from, and why.
#ifndef QELM_TOOLS_ROBUSTNESS_H
#define QELM_TOOLS_ROBUSTNESS_H

#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>

#include "mesh/mesh.h"
#include "qelm.h"

namespace qelm::tool {

enum class Construction {
  plain,
  robust,
  automatic  ///< robust where the plain matrix is not good
};

/// Of the flag --robust: "" (not given), "true" (given without a value) or "auto". Throws
/// UsageError.
Construction parseConstruction(const std::string& text);

/// What robust construction would do; nothing if the library refuses the mesh.
std::optional<QelmRobustReport> robustReport(const Mesh& mesh, std::span<const int> tags);

/// "3 edges not Delaunay, 1 triangle without height, 12 flips".
std::string describe(const QelmRobustReport& report);
nlohmann::ordered_json robustJson(const QelmRobustReport& report);

}  // namespace qelm::tool

#endif
