// Along which axis a mesh stands.
//
// The foot along an axis is the convex hull of the vertices in the lowest 3% of the mesh's height
// along it, seen from above; its support is the foot's area by the whole plan's. A mesh stands
// along the axis with the largest support: the feet of a four-legged animal span most of its plan,
// its muzzle and its flank little. Files mostly have z up, so another axis must be clearly better;
// and roofs and terrains, which are flat along z or y, stand along that axis whatever their foot
// is.
#ifndef QELM_TOOLS_UPRIGHT_H
#define QELM_TOOLS_UPRIGHT_H

#include <cstddef>
#include <optional>
#include <string>

#include "mesh/mesh.h"

namespace qelm::tool {

/// What --up says: an axis, or nothing for auto. Throws UsageError that quotes `text`.
std::optional<std::size_t> parseUp(const std::string& text);

/// The axis of --up or, for auto, that of the file's format: y in glTF, z in others. OBJ files come
/// from programs of both habits: there bestSupportedAxis().
std::size_t upAxis(std::optional<std::size_t> choice, const std::string& meshName,
                   const Mesh& mesh);

std::size_t bestSupportedAxis(const Mesh& mesh);

}  // namespace qelm::tool

#endif
