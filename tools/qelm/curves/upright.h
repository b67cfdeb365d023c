// Along which axis a mesh stands.
#ifndef QELM_TOOLS_UPRIGHT_H
#define QELM_TOOLS_UPRIGHT_H

#include <cstddef>
#include <optional>
#include <string>

#include "mesh/mesh.h"

namespace qelm::tool {

/// What --up says: an axis, or nothing for auto. Throws UsageError that quotes `text`.
std::optional<std::size_t> parseUp(const std::string& text);

/// The axis of --up or, for auto, the one that the file's kind has: y in glTF, z elsewhere but
/// in OBJ files, which come from programs of both sorts: there bestSupportedAxis().
std::size_t upAxis(std::optional<std::size_t> choice, const std::string& meshName,
                   const Mesh& mesh);

/// The axis along which a mesh stands most firmly. Its foot is the convex hull of the vertices in
/// the lowest 3% of its height; the larger the foot beside the whole plan, the firmer it stands.
/// z unless y is clearly better or x far better, and always z for a roof or terrain that is flat
/// along z; one that is flat along y stands along y. Example: the feet of a four-legged animal
/// span most of its plan, its muzzle and its flank little.
std::size_t bestSupportedAxis(const Mesh& mesh);

}  // namespace qelm::tool

#endif
