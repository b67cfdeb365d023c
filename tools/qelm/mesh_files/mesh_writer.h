// Writes meshes. In: a mesh and a format. Out: a file.
#ifndef QELM_TOOLS_MESH_WRITER_H
#define QELM_TOOLS_MESH_WRITER_H

#include <string>

#include "mesh/mesh.h"
#include "text/byte_sink.h"

namespace qelm::tool {

enum class MeshFormat {
  kObj,        ///< text, every double kept
  kOff,        ///< text, every double kept
  kOffBinary,  ///< big-endian, coordinates rounded to single precision
  kPly,        ///< binary, every double kept
  kStl,        ///< binary, coordinates rounded to single precision
  kVtp,        ///< VTK's XML, binary, every double kept
  kVtu         ///< the same as an unstructured grid
};

/// The extensions of them all, for messages.
inline constexpr const char* kWritableFormats = ".obj, .off, .ply, .stl, .vtp or .vtu";

/// The format that a file's extension asks for or, unless it is empty, `wanted`, such as "ply".
/// Throws UsageError that lists them; the standard output ("-") is OBJ.
MeshFormat writableFormat(const std::string& name, const std::string& wanted = "");

/// Whether coordinates are rounded to single precision.
constexpr bool isSinglePrecision(MeshFormat format) {
  return format == MeshFormat::kStl || format == MeshFormat::kOffBinary;
}

/// How many triangles lose their area because corners become the same point in single
/// precision, which STL holds. Throws MeshError that names a vertex too large for it.
int lostToSinglePrecision(const Mesh& mesh);

void writeMesh(const Mesh& mesh, MeshFormat format, ByteSink& file);

}  // namespace qelm::tool

#endif
