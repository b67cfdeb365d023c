// A pass over the bytes of an STL file before the mesh reader sees them.
#ifndef QELM_TOOLS_STL_DATA_H
#define QELM_TOOLS_STL_DATA_H

#include <string>
#include <string_view>

namespace qelm::tool {

/// True when `bytes` are a binary STL file. Many of those begin with "solid",
/// as text ones do; the length decides.
bool isBinaryStl(std::string_view bytes);

/// Throws InputError when a binary file is cut short or holds a coordinate that
/// is not finite: the reader would merge such a point with any other.
void checkBinaryStl(std::string_view bytes, const std::string& name);

/// Whether a binary file, checked before, has a facet with attributes: some programs keep its
/// colour there.
bool hasAttributes(std::string_view bytes);

/// The same facets as a text of one solid, in lower case, without names and
/// normals, which could hold anything. Throws InputError with the line of
/// whatever is wrong.
std::string plainStl(std::string_view text, const std::string& name);

}  // namespace qelm::tool

#endif
