// A mesh with a field as Wavefront OBJ and MTL text.
#ifndef QELM_EXPORT_HEAT_MAP_H
#define QELM_EXPORT_HEAT_MAP_H

#include <cstdint>
#include <ostream>
#include <span>
#include <string_view>

namespace qelm {

struct HeatMap {
  std::span<const double> vertices;         ///< 3n, packed xyz
  std::span<const std::int32_t> triangles;  ///< 3m, 0-based
  std::span<const double> field;            ///< n
};

/// The OBJ text: material, vertices, one texture coordinate for each vertex, faces.
/// The first texture coordinate is 1 for the smallest and 0 for the largest value;
/// a field of equal values gives NaN. `path` is the base name of both files.
void writeObj(std::ostream& out, const HeatMap& map, std::string_view path);

/// The MTL text: the material "Heat" with the colour ramp "viridis.PNG".
void writeMtl(std::ostream& out);

}  // namespace qelm

#endif  // QELM_EXPORT_HEAT_MAP_H
