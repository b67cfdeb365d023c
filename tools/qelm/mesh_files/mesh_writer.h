// Meshes into files.
#ifndef QELM_TOOLS_MESH_WRITER_H
#define QELM_TOOLS_MESH_WRITER_H

#include <string>

#include "mesh/mesh.h"
#include "text/byte_sink.h"

namespace qelm::tool {

enum class MeshFormat {
  kObj,  ///< text, every double kept
  kPly,  ///< binary, every double kept
  kStl   ///< binary, coordinates rounded to single precision
};

/// The format that a file's extension asks for. Throws UsageError that lists
/// them; the standard output ("-") is OBJ.
MeshFormat writableFormat(const std::string& name);

void writeMesh(const Mesh& mesh, MeshFormat format, ByteSink& file);

}  // namespace qelm::tool

#endif
