// Reads OFF files (Geomview's Object File Format), text and binary. In: the file's bytes. Out: a
// polygon soup: points, and faces that name them.
#ifndef QELM_TOOLS_OFF_DATA_H
#define QELM_TOOLS_OFF_DATA_H

#include <string>
#include <string_view>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Reads the points and faces of an OFF file with or without its first line, and of
/// its kin with colours, normals or texture coordinates (COFF, NOFF, STOFF and so on),
/// which are passed over. Every vertex and every face begins on a line of its own.
/// In binary only OFF itself is read. Whether indices are in range is for the caller to check.
/// Throws FileError that names the line.
PolygonSoup readOff(std::string_view text, const std::string& name);

}  // namespace qelm::tool

#endif
