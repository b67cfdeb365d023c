// STL files, text and binary, beside a plain reading of the facets' corners.
#include <cstring>
#include <sstream>

#include "fuzz/mesh_file_fuzz.h"
#include "fuzz/tool_checks.h"
#include "mesh_files/stl_data.h"
#include "text/error.h"

namespace {

using qelm::fuzz::require;

/// With the standard library's streams.
std::vector<qelm::tool::Point> textCorners(const std::string& bytes) {
  std::vector<qelm::tool::Point> corners;
  qelm::tool::LineReader lines(bytes);
  while (lines.next()) {
    std::istringstream words{std::string(lines.line())};
    for (std::string word; words >> word;) {
      word = qelm::tool::lowerCase(word);
      if (word == "solid" || word == "endsolid") break;
      if (word != "vertex") continue;
      corners.emplace_back();
      for (double& coordinate : corners.back()) {
        words >> word;
        coordinate = std::strtod(word.c_str(), nullptr);
      }
    }
  }
  return corners;
}

std::vector<qelm::tool::Point> binaryCorners(const std::string& bytes) {
  std::uint32_t count = 0;
  std::memcpy(&count, bytes.data() + 80, sizeof count);
  std::vector<qelm::tool::Point> corners;
  for (std::size_t facet = 0; facet < count; ++facet)
    for (std::size_t corner = 1; corner <= 3; ++corner) {
      float point[3];
      std::memcpy(point, bytes.data() + 84 + 50 * facet + 12 * corner, sizeof point);
      corners.push_back({point[0], point[1], point[2]});
    }
  return corners;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(data, data + size);
  qelm::tool::PolygonSoup soup;
  if (!qelm::fuzz::readsAs("a.stl", bytes, soup)) return 0;
  qelm::fuzz::requireFinite(soup);
  const std::vector<qelm::tool::Point> corners =
      qelm::tool::isBinaryStl(bytes) ? binaryCorners(bytes) : textCorners(bytes);
  require(3 * soup.faces.size() == corners.size(), "every facet is there");
  // Equal, not the same bits: corners at 0 and -0 are one point.
  for (std::size_t k = 0; k < corners.size(); ++k)
    require(soup.points[static_cast<std::size_t>(soup.faces[k / 3][k % 3])] == corners[k],
            "corners keep their order and their points");
  qelm::fuzz::requireGoodSoup(soup);
  return 0;
}
