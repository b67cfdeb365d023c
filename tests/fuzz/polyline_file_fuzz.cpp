// Files of curves, OBJ and CSV, and the vertices along them on meshes of which only the coordinates
// are checked.
#include <cmath>

#include "conditions/along_curve.h"
#include "fuzz/input.h"
#include "fuzz/tool_checks.h"
#include "mesh/mesh_checks.h"
#include "text/error.h"

namespace {

using qelm::fuzz::require;
using qelm::tool::Mesh;
using qelm::tool::Polyline;

void requireGood(const std::vector<Polyline>& curves) {
  require(!curves.empty(), "a curve at least");
  for (const Polyline& curve : curves) {
    require(!curve.points.empty(), "no curve is empty");
    for (const qelm::tool::Point& p : curve.points)
      for (const double coordinate : p) require(std::isfinite(coordinate), "finite coordinates");
  }
}

void requireGoodVertices(const Mesh& mesh, const std::vector<Polyline>& curves) {
  int before = -1;
  for (const qelm::tool::VertexOnCurve& found : verticesAlong(mesh, curves)) {
    require(found.vertex > before && found.vertex < mesh.vertexCount(), "vertices in order");
    require(std::isnan(found.arc) || (found.arc >= 0 && found.arc <= 1), "the way from 0 to 1");
    before = found.vertex;
  }
  require(before >= 0, "some vertex is nearest");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::size_t cut = std::min(bytes.find('\0'), size);
  const std::string_view text = bytes.substr(0, cut);
  qelm::fuzz::Input input(data + cut, size - cut);
  input.take<std::uint8_t>();
  const qelm::fuzz::FuzzMesh arrays = takeMesh(input);
  const Mesh mesh{arrays.vertices, arrays.triangles, {}};
  for (const char* name : {"a.obj", "a.csv"}) try {
      const std::vector<Polyline> curves = qelm::tool::parsePolylines(text, name);
      requireGood(curves);
      checkFinite(mesh);
      // The work grows with the curve's length in edges; a million samples are slow in a fuzzer.
      std::size_t points = 0;
      for (const Polyline& curve : curves) points += curve.points.size();
      if (points < 20) requireGoodVertices(mesh, curves);
    } catch (const qelm::tool::FileError& error) {
      qelm::fuzz::requireMessage(error.what(), name);
    } catch (const qelm::tool::MeshError&) {
    }
  return 0;
}
