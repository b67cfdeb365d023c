// Level curves as data: OBJ, JSON, CSV.
#ifndef QELM_TOOLS_CURVE_FILES_H
#define QELM_TOOLS_CURVE_FILES_H

#include <string>

#include "curves/curve_set.h"
#include "files/output_file.h"

namespace qelm::tool {

/// Polylines ("l"), a group "level_V" for each level; closed curves come back to
/// their first vertex.
void writeCurvesObj(const CurveSet& curves, OutputFile& file);

/// An object with the mesh's name, the levels, and the curves: the level's index
/// and value, whether they are closed, and their points, of which a closed curve's first is not
/// repeated.
void writeCurvesJson(const CurveSet& curves, const std::string& meshName, OutputFile& file);

/// "curve,level,value,closed,x,y,z" and a line for each point.
void writeCurvesCsv(const CurveSet& curves, OutputFile& file);

}  // namespace qelm::tool

#endif
