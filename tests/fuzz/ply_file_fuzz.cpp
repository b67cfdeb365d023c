// PLY files, text and binary.
#include "fuzz/mesh_file_fuzz.h"
#include "fuzz/tool_checks.h"
#include "mesh_files/ply_header.h"

namespace {

using qelm::tool::PlyElement;

/// The vertices and faces that the header announces, and no others.
void requireAnnounced(const qelm::tool::PolygonSoup& soup, const std::string& bytes) {
  std::size_t vertices = 0;
  std::size_t faces = 0;
  for (const PlyElement& element : qelm::tool::readPlyHeader(bytes, "a.ply").elements) {
    if (qelm::tool::isVertexElement(element.name)) vertices += element.count;
    if (qelm::tool::isFaceElement(element.name)) faces += element.count;
  }
  qelm::fuzz::require(soup.points.size() == vertices, "the announced vertices");
  qelm::fuzz::require(soup.faces.size() == faces, "the announced faces");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(data, data + size);
  qelm::tool::PolygonSoup soup;
  if (!qelm::fuzz::readsAs("a.ply", bytes, soup)) return 0;
  requireAnnounced(soup, bytes);
  qelm::fuzz::requireGoodSoup(soup);
  return 0;
}
