#include "curves/curve_vtp.h"

#include <array>
#include <cstddef>
#include <vector>

#include "mesh_files/vtk_writer.h"
#include "text/index.h"

namespace qelm::tool {

void writeCurvesVtp(std::span<const FieldCurves> fields, ByteSink& file) {
  std::vector<double> points;
  std::vector<int> corners;
  std::vector<int> ends;
  std::vector<double> levels;
  std::vector<double> numbers;
  std::size_t pointCount = 0;
  for (const FieldCurves& field : fields) pointCount += field.curves.pointCount();
  points.reserve(3 * pointCount);
  corners.reserve(pointCount + pointCount / 8);  // and the first again of those that are closed
  for (std::size_t f = 0; f < fields.size(); ++f) {
    const CurveSet& curves = fields[f].curves;
    for (std::size_t c = 0; c < curves.size(); ++c) {
      const Curve curve = curves[c];
      const int first = asInt(points.size() / 3);
      for (std::size_t k = 0; k < curve.size(); ++k) corners.push_back(first + asInt(k));
      if (curve.closed) corners.push_back(first);
      points.insert(points.end(), curve.coordinates.begin(), curve.coordinates.end());
      ends.push_back(asInt(corners.size()));
      levels.push_back(curves.levels()[curve.level]);
      numbers.push_back(static_cast<double>(f));
    }
  }
  const std::array<VtkColumn, 2> cellData = {{{"level", levels}, {"field", numbers}}};
  writeVtkXml({points, corners, ends, {}, std::span(cellData).first(fields.size() > 1 ? 2 : 1)},
              VtkKind::kLines, file);
}

}  // namespace qelm::tool
