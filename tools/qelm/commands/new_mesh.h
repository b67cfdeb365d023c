// What 'weld' and 'repair', which write a mesh, have in common.
#ifndef QELM_TOOLS_NEW_MESH_H
#define QELM_TOOLS_NEW_MESH_H

#include <optional>
#include <string>

#include "mesh/mesh.h"
#include "mesh_files/mesh_writer.h"
#include "terminal/console.h"

namespace qelm::tool {

struct NewMeshOptions {
  std::string mesh;
  bool strict = false;  ///< see MeshSource
  std::string output;
  std::string format;  ///< such as "ply", whatever the output is called; empty: by its name
  std::optional<std::string> tolerance;  ///< as written; none: the default
};

/// Of --tolerance; throws UsageError when it is no distance.
std::optional<double> parseTolerance(const std::optional<std::string>& text);

/// How many triangles are lost to the format's single precision, with a note; 0 in double
/// precision.
int noteSinglePrecision(const Mesh& mesh, MeshFormat format, const std::string& output,
                        const Console& console);

/// A note if the mesh that is written cannot be solved on, or only with an error.
void noteVerdict(const Mesh& mesh, const Console& console);

}  // namespace qelm::tool

#endif
