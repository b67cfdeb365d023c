#include "curves/curve_vtp.h"

#include <array>
#include <cstddef>
#include <vector>

#include "mesh_files/vtk_writer.h"

namespace qelm::tool {

void writeCurvesVtp(const CurveSet& curves, ByteSink& file) {
  std::vector<double> points;
  std::vector<int> corners;
  std::vector<int> ends;
  std::vector<double> levels;
  points.reserve(3 * curves.pointCount());
  for (std::size_t c = 0; c < curves.size(); ++c) {
    const Curve curve = curves[c];
    const int first = static_cast<int>(points.size() / 3);
    for (std::size_t k = 0; k < curve.size(); ++k) corners.push_back(first + static_cast<int>(k));
    if (curve.closed) corners.push_back(first);
    points.insert(points.end(), curve.coordinates.begin(), curve.coordinates.end());
    ends.push_back(static_cast<int>(corners.size()));
    levels.push_back(curves.levels()[curve.level]);
  }
  const std::array<VtkColumn, 1> cellData = {{{"level", levels}}};
  writeVtkXml({points, corners, ends, {}, cellData}, VtkKind::kLines, file);
}

}  // namespace qelm::tool
