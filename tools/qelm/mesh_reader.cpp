// The one file that sees CGAL, whose readers do the reading proper. See
// obj_text.h, ply_header.h and stl_data.h for what has to be done before.
#include "mesh_reader.h"

#include <CGAL/IO/OBJ.h>
#include <CGAL/IO/PLY.h>
#include <CGAL/IO/STL.h>
#include <CGAL/Simple_cartesian.h>
#include <fmt/format.h>

#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "error.h"
#include "obj_text.h"
#include "paths.h"
#include "ply_header.h"
#include "stl_data.h"
#include "text.h"

namespace qelm::tool {
namespace {

using ReaderPoint = CGAL::Simple_cartesian<double>::Point_3;

// The stiffness matrix is gathered from nine entries per triangle, counted by int.
constexpr std::size_t kMostFaces = std::numeric_limits<int>::max() / 9;

struct ReaderSoup {
  std::vector<ReaderPoint> points;
  std::vector<std::vector<std::size_t>> faces;
};

enum class Format { kObj, kStl, kPly };

Format formatOf(const std::filesystem::path& path) {
  const std::string extension = lowerExtension(path);
  if (extension == ".obj") return Format::kObj;
  if (extension == ".stl") return Format::kStl;
  if (extension == ".ply") return Format::kPly;
  throw FileError(fmt::format("{}: not a mesh file by its name; give one that ends in {}",
                              toUtf8(path), kReadableFormats));
}

bool readStl(std::string bytes, const std::string& name, ReaderSoup& soup) {
  if (isBinaryStl(bytes)) {
    checkBinaryStl(bytes, name);
    // So that no binary file is tried as text first.
    bytes.replace(0, 5, "binar");
  } else {
    bytes = plainStl(bytes, name);
  }
  std::istringstream stream(std::move(bytes));
  return CGAL::IO::read_STL(stream, soup.points, soup.faces);
}

bool readPly(std::string bytes, const std::string& name, ReaderSoup& soup) {
  checkPlyHeader(bytes, name);
  std::istringstream stream(std::move(bytes));
  return CGAL::IO::read_PLY(stream, soup.points, soup.faces);
}

bool readAs(Format format, std::string bytes, const std::string& name, ReaderSoup& soup) {
  if (format == Format::kStl) return readStl(std::move(bytes), name, soup);
  if (format == Format::kPly) return readPly(std::move(bytes), name, soup);
  std::istringstream stream(plainObj(bytes, name));
  return CGAL::IO::read_OBJ(stream, soup.points, soup.faces);
}

int checkedIndex(const ReaderSoup& soup, std::size_t face, std::size_t index,
                 const std::string& name) {
  if (index >= soup.points.size())
    throw MeshError(fmt::format(
        "{}: face {}: vertex index {} is out of range: the file has {} "
        "vertices, numbered 0 to {}",
        name, face, static_cast<long long>(index), soup.points.size(), soup.points.size() - 1));
  return static_cast<int>(index);
}

PolygonSoup checkedSoup(const ReaderSoup& from, const std::string& name) {
  PolygonSoup soup;
  soup.points.reserve(from.points.size());
  for (const ReaderPoint& p : from.points) soup.points.push_back({p.x(), p.y(), p.z()});
  soup.faces.resize(from.faces.size());
  for (std::size_t f = 0; f < from.faces.size(); ++f) {
    if (from.faces[f].size() < 3)
      throw FileError(
          fmt::format("{}: face {}: has only {} corners", name, f, from.faces[f].size()));
    for (const std::size_t index : from.faces[f])
      soup.faces[f].push_back(checkedIndex(from, f, index, name));
  }
  return soup;
}

}  // namespace

PolygonSoup readPolygonSoup(const std::filesystem::path& path) {
  const std::string name = toUtf8(path);
  std::string bytes = readFile(path);
  const Format format = formatOf(path);
  if (trimmed(bytes).empty()) throw FileError(fmt::format("{}: not a mesh: empty file", name));
  ReaderSoup soup;
  if (!readAs(format, std::move(bytes), name, soup))
    throw FileError(
        fmt::format("{}: not a mesh that can be read; it may be damaged or cut short", name));
  if (soup.points.empty() || soup.faces.empty())
    throw FileError(
        fmt::format("{}: not a mesh: no {}", name, soup.points.empty() ? "vertices" : "faces"));
  if (soup.points.size() > kMostFaces || soup.faces.size() > kMostFaces)
    throw FileError(fmt::format("{}: too large: more than {} vertices or faces", name, kMostFaces));
  PolygonSoup result = checkedSoup(soup, name);
  result.facetsOwnTheirCorners = format == Format::kStl;
  return result;
}

}  // namespace qelm::tool
