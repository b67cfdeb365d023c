#include "mesh_files/load_mesh.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "files/paths.h"
#include "mesh/mesh_checks.h"
#include "mesh/soup.h"
#include "mesh/used_part.h"
#include "mesh/weld.h"
#include "mesh_files/mesh_reader.h"
#include "mesh_files/triangulate.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

struct Loaded {
  Mesh mesh;
  bool isSoup;
  std::set<std::string> passedOver;
};

/// "face 17 does", or "3 faces (the first is 17) do".
std::string subject(const FaceCount& found, const char* does, const char* many) {
  if (found.count == 1) return fmt::format("face {} {}", found.first, does);
  return fmt::format("{} faces (the first is {}) {}", found.count, found.first, many);
}

void noteSplits(const std::string& name, const Triangulation& split, std::size_t faceCount,
                const Console& console) {
  if (split.splitFaceCount == 0) return;
  std::string note =
      fmt::format("{}: {} of {} faces have more than three corners and were split into triangles",
                  name, split.splitFaceCount, faceCount);
  if (split.bent.count > 0)
    note += fmt::format(
        "; {} not flat (the first is {}; at most {:.0f}% of its size off its "
        "plane)",
        split.bent.count, split.bent.first, 100 * split.worstBend);
  console.note(note);
  if (split.crossing.count > 0)
    console.note(fmt::format(
        "{}: {} without area; split as well as possible, 'qelm check' says whether that works",
        name,
        subject(split.crossing, "crosses or touches itself, or is",
                "cross or touch themselves, or are")));
}

void noteLeftOut(const std::string& name, const Triangulation& split, const Console& console) {
  if (split.repeatedCorner.count > 0)
    console.note(fmt::format("{}: {} that corner", name,
                             subject(split.repeatedCorner, "names a vertex twice in a row; it lost",
                                     "name a vertex twice in a row; they lost")));
  if (split.leftOut.count > 0)
    console.note(
        fmt::format("{}: {} left out; triangles are counted without", name,
                    subject(split.leftOut, "has fewer than three different corners and was",
                            "have fewer than three different corners and were")));
}

void noteUnused(const std::string& name, const Mesh& mesh, const Console& console) {
  const std::vector<bool> used = usedVertices(mesh);
  const auto first = std::find(used.begin(), used.end(), false);
  if (first == used.end()) return;
  const auto count = std::count(first, used.end(), false);
  const std::string vertex = describeVertex(mesh, asInt(first - used.begin()));
  console.note(count == 1
                   ? fmt::format("{}: {} is in no triangle; it gets no value", name, vertex)
                   : fmt::format("{}: {} vertices are in no triangle, the first is {}; they get no "
                                 "value",
                                 name, count, vertex));
}

Loaded load(const MeshSource& source, const Console& console) {
  const std::string& name = source.name;
  PolygonSoup soup = readPolygonSoup(toPath(name));
  // Facets without area are for welding to drop, which counts them.
  const bool isSoup = soup.facetsOwnTheirCorners;
  const bool asTheyAre = source.strict || isSoup;
  const std::size_t faceCount = soup.faces.size();
  const std::size_t mergedPoints = soup.mergedPoints;
  std::set<std::string> passedOver = std::move(soup.passedOver);
  Triangulation result = naming(name, [&] {
    return asTheyAre ? triangulateStrictly(std::move(soup)) : triangulate(std::move(soup));
  });
  if (mergedPoints > 0)
    console.note(fmt::format(
        "{}: {} of {} vertices lie exactly on another one and became one with it; vertex numbers "
        "are those after that",
        name, mergedPoints, mergedPoints + asIndex(result.mesh.vertexCount())));
  noteSplits(name, result, faceCount, console);
  noteLeftOut(name, result, console);
  // The reader has merged corners that are exactly equal; the file has not.
  if (isSoup) return {withOwnCorners(result.mesh), true, std::move(passedOver)};
  return {std::move(result.mesh), false, std::move(passedOver)};
}

/// Formats in which every facet has its own corners are welded.
Mesh weldedIfSoup(const MeshSource& source, const Console& console) {
  const std::string& name = source.name;
  Loaded loaded = load(source, console);
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

Mesh loadMesh(const MeshSource& source, const Console& console) {
  Loaded loaded = load(source, console);
  if (!loaded.passedOver.empty())
    console.note(
        fmt::format("{}: not carried over: {}", source.name, fmt::join(loaded.passedOver, ", ")));
  return std::move(loaded.mesh);
}

Mesh loadWeldedMesh(const MeshSource& source, const Console& console) {
  const std::string& name = source.name;
  Mesh mesh = weldedIfSoup(source, console);
  if (!source.strict) noteUnused(name, mesh, console);
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
