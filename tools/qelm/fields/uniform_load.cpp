#include "fields/uniform_load.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>

#include "mesh/vec3.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {

std::optional<double> parseUniformLoad(const std::string& text) {
  constexpr std::string_view kForm = "uniform=";
  if (!text.starts_with(kForm)) return {};
  const std::string_view word = std::string_view(text).substr(kForm.size());
  const auto value = parseDouble(trimmed(word));
  if (!value || !std::isfinite(*value))
    throw UsageError(
        fmt::format("--load {}: '{}' is not a load per area; give a number, or the "
                    "name of a file as ./{}",
                    text, word, text));
  return value;
}

std::vector<double> uniformLoad(const Mesh& mesh, double perArea) {
  std::vector<double> load(asIndex(mesh.vertexCount()), 0.0);
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const double twiceArea = length(areaVector(mesh, t));
    for (const int v : mesh.corners(t)) load[asIndex(v)] += perArea * twiceArea / 6;
  }
  return load;
}

}  // namespace qelm::tool
