// A mesh with its field as one glTF file.
#ifndef QELM_TOOLS_HEAT_GLTF_H
#define QELM_TOOLS_HEAT_GLTF_H

#include <cstddef>
#include <span>

#include "colours/caption.h"
#include "colours/colour_scale.h"
#include "mesh/mesh.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// glTF 2.0: the mesh in single precision, the colour ramp as its texture, with a texture
/// coordinate for each vertex (TEXCOORD_0), the field as _VALUE, and its colours as _COLOR, as they
/// are in the ramp (sRGB). They are not COLOR_0: glTF would multiply the texture by them. The node
/// has the caption's title as its name, and the unit among its extras. `up` is 0, 1 or 2 for x, y
/// or z. The field must have a range, and every vertex a value.
void writeHeatGltf(const Mesh& mesh, std::span<const double> field, const ColourScale& scale,
                   const Caption& caption, std::size_t up, bool isBinary, ByteSink& file);

}  // namespace qelm::tool

#endif
