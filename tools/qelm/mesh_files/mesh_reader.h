// Mesh files into memory.
#ifndef QELM_TOOLS_MESH_READER_H
#define QELM_TOOLS_MESH_READER_H

#include <filesystem>
#include <string>
#include <string_view>

#include "mesh/mesh.h"

namespace qelm::tool {

/// The extensions that readPolygonSoup() takes, for messages.
inline constexpr const char* kReadableFormats =
    ".obj, .off, .ply, .stl, .vtk, .vtp, .vtu, .gltf, .glb, .3mf or .msh";

/// Whether files with this extension may hold numbers for each vertex besides its place.
bool hasVertexArrays(std::string_view extension);

/// What stands for the standard input as a mesh file: "-.obj" and the like, for --read-as. (A file
/// of such a name is ./-.obj.) Throws UsageError when `mesh` is not "-", or nothing reads `format`.
std::string standardInputAs(const std::string& mesh, const std::string& format);

/// Reads a mesh file. Vertices and faces keep their order in the file and every
/// double its bits. Corners of an STL file's facets that are exactly equal are
/// one point already.
///
/// Throws FileError that names the file, and the line where there is one, when the
/// file cannot be read or is not a mesh, MeshError when it names a vertex that it has
/// not.
PolygonSoup readPolygonSoup(const std::filesystem::path& path);

/// The same for a file's bytes that are in memory already.
PolygonSoup readPolygonSoup(const std::filesystem::path& path, std::string bytes);

}  // namespace qelm::tool

#endif
