// Reads glTF 2.0. In: the bytes of a .glb or .gltf file. Out: a polygon soup: points, and faces
// that name them.
#ifndef QELM_TOOLS_GLTF_DATA_H
#define QELM_TOOLS_GLTF_DATA_H

#include <filesystem>
#include <string>
#include <string_view>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Reads the triangles of all meshes of the scene, each where its nodes put it. Vertices that lie
/// exactly on one before them become one with it: glTF repeats them where normals or textures
/// differ. Numbers of vertices whose names begin with _ become arrays. Buffers are in the file or
/// in files in `folder`. Whether indices are in range is for the caller to check. Throws FileError
/// that names the element.
PolygonSoup readGltf(std::string_view bytes, const std::string& name,
                     const std::filesystem::path& folder);

}  // namespace qelm::tool

#endif
