#include "mesh_files/load_mesh.h"

#include "files/paths.h"
#include "mesh/mesh_checks.h"
#include "mesh/soup.h"
#include "mesh/weld.h"
#include "mesh_files/mesh_reader.h"
#include "mesh_files/triangulate.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

struct Loaded {
  Mesh mesh;
  bool isSoup;
};

Loaded load(const std::string& name, const Console& console) {
  PolygonSoup soup = readPolygonSoup(toPath(name));
  Triangulation result = naming(name, [&] { return triangulate(soup); });
  // Vertices stay what they are.
  result.mesh.attributes = std::move(soup.attributes);
  if (result.splitFaceCount > 0)
    console.note(
        fmt::format("{}: {} of {} faces have more than three corners and were split into "
                    "triangles",
                    name, result.splitFaceCount, soup.faces.size()));
  // The reader has merged corners that are exactly equal; the file has not.
  if (soup.facetsOwnTheirCorners) return {withOwnCorners(result.mesh), true};
  return {std::move(result.mesh), false};
}

/// Formats in which every facet has its own corners are welded.
Mesh weldedIfSoup(const std::string& name, const Console& console) {
  Loaded loaded = load(name, console);
  if (!loaded.isSoup) return std::move(loaded.mesh);
  const Mesh& soup = loaded.mesh;
  double tolerance = 0;
  Welded welded = naming(name, [&] {
    checkFinite(soup);
    tolerance = kDefaultWeldPart * diagonal(soup);
    return weld(soup, tolerance);
  });
  console.note(fmt::format(
      "{}: welded within {}: {} vertices became {}, {} triangles became {}; 'qelm weld' takes "
      "another tolerance",
      name, digits(tolerance, tolerance / 100), soup.vertexCount(), welded.mesh.vertexCount(),
      soup.triangleCount(), welded.mesh.triangleCount()));
  return std::move(welded.mesh);
}

}  // namespace

Mesh loadMesh(const std::string& name, const Console& console) { return load(name, console).mesh; }

Mesh loadWeldedMesh(const std::string& name, const Console& console) {
  Mesh mesh = weldedIfSoup(name, console);
  naming(name, [&] {
    if (const auto soup = findSoup(mesh))
      console.note(fmt::format(
          "{}: this looks like a triangle soup: it has {} parts, and {} of {} vertices lie on "
          "another one; join them with: qelm weld {} --tolerance {:.0e} -o welded.obj",
          name, soup->parts, soup->merged, mesh.vertexCount(), name, soup->tolerance));
  });
  return mesh;
}

}  // namespace qelm::tool
