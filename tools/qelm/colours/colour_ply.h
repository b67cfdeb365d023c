// A mesh with its field as one PLY file.
#ifndef QELM_TOOLS_COLOUR_PLY_H
#define QELM_TOOLS_COLOUR_PLY_H

#include <span>

#include "colours/caption.h"
#include "colours/colour_scale.h"
#include "files/output_file.h"
#include "mesh/mesh.h"

namespace qelm::tool {

/// Binary, in the mesh's order: of every vertex its coordinates and value as doubles and
/// its colour as red, green, blue; a vertex without a value is grey. What the caption says, and a
/// range that was given, stand in comments.
void writeColourPly(const Mesh& mesh, std::span<const double> field, const ColourScale& scale,
                    const Caption& caption, OutputFile& file);

}  // namespace qelm::tool

#endif
