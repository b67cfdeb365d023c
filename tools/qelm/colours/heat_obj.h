// A mesh with its field as an OBJ file and its material.
#ifndef QELM_TOOLS_HEAT_OBJ_H
#define QELM_TOOLS_HEAT_OBJ_H

#include <span>
#include <string>

#include "mesh/mesh.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// The layout of the library's wobj(), fixed vertices first and the free ones from the back,
/// but with the shortest digits that read back as the same doubles: six, as wobj() writes
/// them, are too few for a mesh that is far from the origin. The texture coordinate of a
/// vertex is 0 where the field is largest and 1 where it is smallest. `tags` are not 0 at
/// fixed vertices; `material` is the file's name. The field must have a range.
void writeHeatObj(const Mesh& mesh, std::span<const double> field, std::span<const int> tags,
                  const std::string& material, ByteSink& file);

/// The material, byte for byte that of wobj(); it names viridis.PNG.
void writeHeatMtl(ByteSink& file);

}  // namespace qelm::tool

#endif
