// OBJ files, beside a reading of the plain text that is handed to the reader behind.
#include "fuzz/mesh_file_fuzz.h"
#include "fuzz/tool_checks.h"
#include "mesh_files/obj_text.h"
#include "text/error.h"

namespace {

using qelm::fuzz::require;

void requireSameAsText(const qelm::tool::PolygonSoup& soup, const std::string& plain) {
  qelm::tool::LineReader lines(plain);
  std::size_t vertices = 0;
  std::size_t faces = 0;
  while (lines.next()) {
    const std::vector<std::string_view> words = qelm::tool::splitAtBlanks(lines.line());
    if (words[0] == "v") {
      require(vertices < soup.points.size(), "no vertex is left out");
      const qelm::tool::Point& point = soup.points[vertices++];
      for (std::size_t k = 0; k < 3; ++k)
        require(qelm::fuzz::sameBits({&point[k], 1}, {{*qelm::tool::parseDouble(words[k + 1])}}),
                "every coordinate keeps its bits");
    } else {
      require(faces < soup.faces.size(), "no face is left out");
      const std::span<const int> face = soup.faces[faces++];
      require(face.size() + 1 == words.size(), "every corner is there");
      for (std::size_t k = 0; k < face.size(); ++k)
        require(face[k] + 1 == qelm::tool::parseInteger(words[k + 1]), "corners keep their order");
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
  qelm::tool::Attributes attributes;
  requireSameAsText(soup, qelm::tool::plainObj(bytes, "a.obj", attributes));
  qelm::fuzz::requireGoodSoup(soup);
  return 0;
}
