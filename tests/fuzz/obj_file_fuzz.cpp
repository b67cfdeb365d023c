// OBJ files, beside a plain reading of their vertices and faces with the standard library's
// streams.
#include <sstream>

#include "fuzz/mesh_file_fuzz.h"
#include "fuzz/tool_checks.h"
#include "text/error.h"

namespace {

using qelm::fuzz::require;

/// The lines without comments, each with the lines that continue it.
std::vector<std::string> statementsOf(const std::string& bytes) {
  std::vector<std::string> statements;
  qelm::tool::LineReader lines(bytes);
  while (lines.next()) {
    std::string line(lines.line());
    while (line.ends_with('\\')) {
      line.back() = ' ';
      if (!lines.next()) break;
      line += lines.line();
    }
    statements.push_back(line.substr(0, line.find('#')));
  }
  return statements;
}

void requireSameAsText(const qelm::tool::PolygonSoup& soup, const std::string& bytes) {
  std::size_t vertices = 0;
  std::size_t faces = 0;
  for (const std::string& statement : statementsOf(bytes)) {
    std::istringstream words(statement);
    std::string word;
    words >> word;
    if (word == "v") {
      require(vertices < soup.points.size(), "no vertex is left out");
      for (const double coordinate : soup.points[vertices]) {
        words >> word;
        require(qelm::fuzz::sameBits({&coordinate, 1}, {{std::strtod(word.c_str(), nullptr)}}),
                "every coordinate keeps its bits");
      }
      ++vertices;
    } else if (word == "f" || word == "fo") {
      require(faces < soup.faces.size(), "no face is left out");
      for (const int corner : soup.faces[faces]) {
        words >> word;
        const long index = std::strtol(word.c_str(), nullptr, 10);
        require(corner == (index < 0 ? static_cast<long>(vertices) + index : index - 1),
                "corners keep their order");
      }
      require(!(words >> word), "every corner is there");
      ++faces;
    }
  }
  require(vertices == soup.points.size() && faces == soup.faces.size(), "nothing is made up");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(data, data + size);
  qelm::tool::PolygonSoup soup;
  if (!qelm::fuzz::readsAs("a.obj", bytes, soup)) return 0;
  qelm::fuzz::requireFinite(soup);
  requireSameAsText(soup, bytes);
  qelm::fuzz::requireGoodSoup(soup);
  return 0;
}
