// What every command begins with. In: a mesh file's name. Out: a triangle mesh, and notes on what
// was done to get it.
#ifndef QELM_TOOLS_LOAD_MESH_H
#define QELM_TOOLS_LOAD_MESH_H

#include <fmt/format.h>

#include <string>

#include "mesh/mesh.h"
#include "terminal/console.h"
#include "text/error.h"

namespace qelm::tool {

/// Messages about a mesh's elements get the file's name in front.
template <class Action>
auto naming(const std::string& file, Action action) {
  try {
    return action();
  } catch (const InputError& error) {
    throw InputError(fmt::format("{}: {}", file, error.what()), error.code());
  }
}

/// A mesh file, and how it is read.
struct MeshSource {
  std::string name;
  bool strict = false;  ///< what would be mended or left out is refused instead
};

/// Reads a file, splits its polygons and leaves out what is no triangle, with notes. Formats in
/// which every facet has its own corners give three vertices per triangle. For commands that write
/// a mesh: a note says what of the file they do not carry over.
Mesh loadMesh(const MeshSource& source, const Console& console);

/// The same, but such soups are welded, with a note; others point out what looks like a soup all
/// the same, and vertices in no triangle.
Mesh loadWeldedMesh(const MeshSource& source, const Console& console);

}  // namespace qelm::tool

#endif
