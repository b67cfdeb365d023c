// Reads mesh files of every format. In: a file's name, or its bytes. Out: a polygon soup whose
// indices are in range.
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

/// What stands for the standard input as a mesh file, for --read-as, and is read well in messages:
/// "standard input (obj)" and the like. (A file of such a name is ./standard input (obj).) Throws
/// UsageError when `mesh` is not "-", or nothing reads `format`.
std::string standardInputAs(const std::string& mesh, const std::string& format);

/// What a mesh file holds by its name: the extension in lower case with its dot, also of what
/// standardInputAs() returns.
std::string meshExtension(const std::string& name);

/// Reads a mesh file. Vertices and faces keep their order in the file and every
/// double its bits. Corners of an STL file's facets that are exactly equal are
/// one point already.
///
/// Throws FileError that names the file, and the line where there is one, when the
/// file cannot be read or is not a mesh, MeshError when it names a vertex that it has
/// not.
PolygonSoup readPolygonSoup(const std::filesystem::path& path);

/// The same for a file's bytes that are in memory already.
PolygonSoup readPolygonSoup(const std::filesystem::path& path, std::string_view bytes);

}  // namespace qelm::tool

#endif
