// What 'weld' and 'repair' have in common: they write a mesh.
#ifndef QELM_TOOLS_NEW_MESH_H
#define QELM_TOOLS_NEW_MESH_H

#include <optional>
#include <string>

#include "mesh/mesh.h"
#include "mesh_files/mesh_writer.h"
#include "terminal/console.h"

namespace qelm::tool {

/// Of --tolerance; throws UsageError when it is no distance.
std::optional<double> parseTolerance(const std::optional<std::string>& text);

/// How many triangles an STL file loses, with a note; 0 for other formats.
int noteSinglePrecision(const Mesh& mesh, MeshFormat format, const std::string& output,
                        const Console& console);

/// A mesh that cannot be solved on is still a result; better to know now.
void noteVerdict(const Mesh& mesh, const Console& console);

}  // namespace qelm::tool

#endif
