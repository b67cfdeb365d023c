// A mesh with its field as an OBJ file and its material.
#ifndef QELM_TOOLS_HEAT_OBJ_H
#define QELM_TOOLS_HEAT_OBJ_H

#include <span>
#include <string>

#include "colours/caption.h"
#include "colours/colour_scale.h"
#include "mesh/mesh.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// The layout of the library's wobj(), fixed vertices first and the free ones from the back,
/// but with the shortest digits that read back as the same doubles: six, as wobj() writes
/// them, are too few for a mesh that is far from the origin. The texture coordinate of a
/// vertex is 0 at the scale's high end and 1 at its low one. `tags` are not 0 at
/// fixed vertices; `material` is the file's name. What the caption says, and a range that was
/// given, stand in comments before all else.
void writeHeatObj(const Mesh& mesh, std::span<const double> field, std::span<const int> tags,
                  const ColourScale& scale, const Caption& caption, const std::string& material,
                  ByteSink& file);

/// The material; with the image viridis.PNG byte for byte that of wobj().
void writeHeatMtl(const std::string& image, ByteSink& file);

}  // namespace qelm::tool

#endif
