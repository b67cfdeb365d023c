// Level curves as files.
#ifndef QELM_TOOLS_CURVE_WRITER_H
#define QELM_TOOLS_CURVE_WRITER_H

#include <optional>
#include <string>

#include "level_curves.h"
#include "output_file.h"
#include "projection.h"

namespace qelm::tool {

enum class CurveFormat { obj, json, svg, csv };

/// By the extension of a file's name, or by `name` of a format where that is given.
/// Throws UsageError when neither says.
CurveFormat curveFormat(const std::string& output, const std::optional<std::string>& name);

/// Polylines ("l") in a group for each level; a closed one ends at its first vertex.
void writeCurvesObj(const LevelCurves& curves, OutputFile& file);
/// {"levels": [...], "curves": [{"level", "value", "closed", "points"}, ...]}
void writeCurvesJson(const LevelCurves& curves, OutputFile& file);
/// "curve,level,value,closed,x,y,z" and a line for each point.
void writeCurvesCsv(const LevelCurves& curves, OutputFile& file);
/// A drawing: the mesh's boundary, the curves in the colours of their values, a legend.
void writeCurvesSvg(const LevelCurves& curves, const Mesh& mesh, const Projection& projection,
                    OutputFile& file);

}  // namespace qelm::tool

#endif
