// A look at a PLY file's header before the mesh reader sees it.
#ifndef QELM_TOOLS_PLY_HEADER_H
#define QELM_TOOLS_PLY_HEADER_H

#include <string>
#include <string_view>

namespace qelm::tool {

/// Throws InputError with the line of whatever keeps the header from announcing
/// vertices with x, y, z and faces with a list of vertex indices, or when the file
/// is too short for what is announced. The reader behind this trusts the header.
void checkPlyHeader(std::string_view bytes, const std::string& name);

}  // namespace qelm::tool

#endif
