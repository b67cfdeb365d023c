// Level curves as data: OBJ, JSON, CSV.
#ifndef QELM_TOOLS_CURVE_FILES_H
#define QELM_TOOLS_CURVE_FILES_H

#include <span>
#include <string>

#include "curves/field_curves.h"
#include "files/output_file.h"

namespace qelm::tool {

/// Polylines ("l"), a group "level_V" for each level; closed curves come back to
/// their first vertex. Each of several fields is an object with its name.
void writeCurvesObj(std::span<const FieldCurves> fields, OutputFile& file);

/// An object with the mesh's name, the levels, and the curves: the level's index
/// and value, whether they are closed, and their points, of which a closed curve's first is not
/// repeated. Of several fields "fields" has names and levels, and each curve the field's index.
void writeCurvesJson(std::span<const FieldCurves> fields, const std::string& meshName,
                     OutputFile& file);

/// "curve,level,value,closed,x,y,z" and a line for each point; of several fields "field" and its
/// number come first.
void writeCurvesCsv(std::span<const FieldCurves> fields, OutputFile& file);

}  // namespace qelm::tool

#endif
