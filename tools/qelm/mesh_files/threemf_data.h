// Reads 3MF files, the ZIP archives that slicers write. In: the file's bytes. Out: a polygon soup:
// points, and triangles that name them.
#ifndef QELM_TOOLS_THREEMF_DATA_H
#define QELM_TOOLS_THREEMF_DATA_H

#include <string>
#include <string_view>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Reads the triangles of all objects that the build names, each where its components and item put
/// it; parts in models of their own as well. Coordinates are in the file's unit. Whether indices
/// are in range is for the caller to check. Throws FileError that names the line of the model.
/// Format: 3MF Consortium, 3D Manufacturing Format, its core and the extension for production.
PolygonSoup readThreemf(std::string_view bytes, const std::string& name);

}  // namespace qelm::tool

#endif
