#include "load_mesh.h"

#include "mesh_reader.h"
#include "paths.h"
#include "triangulate.h"

namespace qelm::tool {
namespace {

struct Loaded {
  Mesh mesh;
  bool isSoup;
};

Loaded load(const std::string& name, const Console& console) {
  const PolygonSoup soup = readPolygonSoup(toPath(name));
  Triangulation result = naming(name, [&] { return triangulate(soup); });
  if (result.splitFaceCount > 0)
    console.note(
        fmt::format("{}: {} of {} faces have more than three corners and were split into "
                    "triangles",
                    name, result.splitFaceCount, soup.faces.size()));
  return {std::move(result.mesh), false};
}

}  // namespace

Mesh loadMesh(const std::string& name, const Console& console) { return load(name, console).mesh; }

Mesh loadWeldedMesh(const std::string& name, const Console& console) {
  return load(name, console).mesh;
}

}  // namespace qelm::tool
