// A mesh with its field as one PLY file.
#ifndef QELM_TOOLS_COLOUR_PLY_H
#define QELM_TOOLS_COLOUR_PLY_H

#include <span>

#include "files/output_file.h"
#include "mesh/mesh.h"

namespace qelm::tool {

/// Binary, in the mesh's order: of every vertex its place and value as doubles and
/// its colour, viridis over the field's range, as red, green, blue. The field must
/// have a range; a vertex without a value is grey.
void writeColourPly(const Mesh& mesh, std::span<const double> field, OutputFile& file);

}  // namespace qelm::tool

#endif
