#include "mesh_files/mesh_reader.h"

#include <fmt/format.h>

#include <limits>
#include <span>
#include <string>

#include "files/file_bytes.h"
#include "files/paths.h"
#include "mesh_files/gltf_data.h"
#include "mesh_files/msh_data.h"
#include "mesh_files/obj_data.h"
#include "mesh_files/off_data.h"
#include "mesh_files/ply_data.h"
#include "mesh_files/stl_data.h"
#include "mesh_files/threemf_data.h"
#include "mesh_files/vtk_legacy.h"
#include "mesh_files/vtk_xml.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

// The library gathers its matrix from nine entries per triangle, which it counts by int.
constexpr std::size_t kMostFaces = std::numeric_limits<int>::max() / 9;

// As in "standard input (obj)".
constexpr std::string_view kStandardInput = "standard input (";

bool isStandardInput(std::string_view name) {
  return name.starts_with(kStandardInput) && name.ends_with(')');
}

enum class Format { kObj, kOff, kPly, kStl, kVtk, kVtkXml, kGltf, kThreemf, kMsh };

Format formatOf(const std::filesystem::path& path) {
  const std::string extension = meshExtension(toUtf8(path));
  if (extension == ".obj") return Format::kObj;
  if (extension == ".off") return Format::kOff;
  if (extension == ".ply") return Format::kPly;
  if (extension == ".stl") return Format::kStl;
  if (extension == ".vtk") return Format::kVtk;
  if (extension == ".vtp" || extension == ".vtu") return Format::kVtkXml;
  if (extension == ".gltf" || extension == ".glb") return Format::kGltf;
  if (extension == ".3mf") return Format::kThreemf;
  if (extension == ".msh") return Format::kMsh;
  if (toUtf8(path) == "-")
    throw UsageError("the standard input has no name: say what it holds, as in --read-as obj");
  throw FileError(fmt::format("{}: not a mesh file by its name; give one that ends in {}",
                              toUtf8(path), kReadableFormats));
}

PolygonSoup readAs(Format format, std::string_view bytes, const std::filesystem::path& path) {
  const std::string name = toUtf8(path);
  switch (format) {
    case Format::kObj:
      return readObj(bytes, name);
    case Format::kOff:
      return readOff(bytes, name);
    case Format::kPly:
      return readPly(bytes, name);
    case Format::kVtk:
      return readVtkLegacy(bytes, name);
    case Format::kVtkXml:
      return readVtkXml(bytes, name);
    case Format::kGltf:
      return readGltf(bytes, name, path.parent_path());
    case Format::kThreemf:
      return readThreemf(bytes, name);
    case Format::kMsh:
      return readMsh(bytes, name);
    default:
      return readStl(bytes, name);
  }
}

void checkSizes(const PolygonSoup& soup, const std::string& name) {
  if (soup.points.empty() || soup.faces.empty())
    throw FileError(
        fmt::format("{}: not a mesh: no {}", name, soup.points.empty() ? "vertices" : "faces"));
  if (soup.points.size() > kMostFaces || soup.faces.size() > kMostFaces)
    throw MeshError(fmt::format("{}: too large: more than {} vertices or faces", name, kMostFaces));
}

void checkFace(const PolygonSoup& soup, std::size_t face, const std::string& name) {
  const std::span<const int> corners = soup.faces[face];
  if (corners.size() < 3)
    throw MeshError(fmt::format("{}: face {}: has only {} corners", name, face, corners.size()));
  for (const int index : corners)
    if (index < 0 || asIndex(index) >= soup.points.size())
      throw MeshError(fmt::format(
          "{}: face {}: vertex index {} is out of range: the file has {} vertices, numbered 0 "
          "to {}",
          name, face, index, soup.points.size(), soup.points.size() - 1));
}

}  // namespace

bool hasVertexArrays(std::string_view extension) {
  return extension == ".ply" || extension == ".vtk" || extension == ".vtp" || extension == ".vtu" ||
         extension == ".gltf" || extension == ".glb";
}

std::string standardInputAs(const std::string& mesh, const std::string& format) {
  if (mesh != "-")
    throw UsageError(
        fmt::format("--read-as {}: only the standard input (-) needs it; {} is read by its name",
                    format, mesh));
  const std::string name = fmt::format("{}{})", kStandardInput, lowerCase(format));
  try {
    formatOf(toPath(name));
  } catch (const FileError&) {
    throw UsageError(fmt::format("--read-as {}: what is read is {}", format, kReadableFormats));
  }
  return name;
}

std::string meshExtension(const std::string& name) {
  if (!isStandardInput(name)) return lowerExtension(toPath(name));
  std::string format = name.substr(kStandardInput.size());
  format.pop_back();
  return "." + format;
}

PolygonSoup readPolygonSoup(const std::filesystem::path& path) {
  formatOf(path);  // refuses the name before the file is touched
  if (isStandardInput(toUtf8(path))) return readPolygonSoup(path, readStandardInput());
  const FileBytes bytes = readFileBytes(path);
  try {
    PolygonSoup soup = readPolygonSoup(path, bytes);
    bytes.requireWhole(path);
    return soup;
  } catch (const InputError&) {
    bytes.requireWhole(path);  // says more than what the bytes that are missing led to
    throw;
  }
}

PolygonSoup readPolygonSoup(const std::filesystem::path& path, std::string_view bytes) {
  const std::string name = toUtf8(path);
  const Format format = formatOf(path);
  if (trimmed(bytes).empty()) throw FileError(fmt::format("{}: not a mesh: empty file", name));
  PolygonSoup soup = readAs(format, bytes, path);
  checkSizes(soup, name);
  if (soup.faces.areTriangles() && soup.faces.areAllBelow(soup.points.size())) return soup;
  for (std::size_t f = 0; f < soup.faces.size(); ++f) checkFace(soup, f, name);
  return soup;
}

}  // namespace qelm::tool
