#include "curves/curve_gltf.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "mesh_files/gltf_builder.h"

namespace qelm::tool {
namespace {

using Json = GltfBuilder::Json;

constexpr int kLines = 1;  // the mode of a primitive

/// From the bytes of a picture to the proportion of light (IEC 61966-2-1, "sRGB").
double linear(std::uint8_t channel) {
  const double c = channel / 255.0;
  return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

Json material(const std::string& name, const Colour& colour) {
  return {{"name", name},
          {"pbrMetallicRoughness",
           {{"baseColorFactor", {linear(colour[0]), linear(colour[1]), linear(colour[2]), 1}},
            {"metallicFactor", 0}}},
          {"extensions", {{"KHR_materials_unlit", Json::object()}}}};
}

/// The points and pieces of one level's curves, c to end.
struct Level {
  std::vector<double> points;
  std::vector<std::uint32_t> pieces;

  void add(const Curve& curve) {
    const auto first = static_cast<std::uint32_t>(points.size() / 3);
    points.insert(points.end(), curve.coordinates.begin(), curve.coordinates.end());
    const auto count = static_cast<std::uint32_t>(curve.size());
    for (std::uint32_t k = 0; k + 1 < count; ++k)
      pieces.insert(pieces.end(), {first + k, first + k + 1});
    if (curve.closed) pieces.insert(pieces.end(), {first + count - 1, first});
  }
};

}  // namespace

void writeCurvesGltf(std::span<const FieldCurves> fields, std::size_t up, bool isBinary,
                     ByteSink& file) {
  std::vector<double> all;
  for (const FieldCurves& field : fields)
    for (std::size_t c = 0; c < field.curves.size(); ++c)
      all.insert(all.end(), field.curves[c].coordinates.begin(), field.curves[c].coordinates.end());
  const GltfPlaces places(all, up);
  GltfBuilder builder;
  if (!all.empty()) builder.document()["extensionsUsed"] = {"KHR_materials_unlit"};
  for (const FieldCurves& field : fields) {
    const CurveSet& curves = field.curves;
    for (std::size_t c = 0; c < curves.size();) {
      const std::size_t number = curves[c].level;
      Level level;
      for (; c < curves.size() && curves[c].level == number; ++c) level.add(curves[c]);
      const double value = curves.levels()[number];
      const std::string name =
          fmt::format("{}{}level {}", field.name, field.name.empty() ? "" : " ", value);
      const Json attributes = {{"POSITION", builder.addPositions(places.rounded(level.points))}};
      const std::size_t indices = builder.addIndices(level.pieces);
      const std::size_t mesh = builder.document()["meshes"].size();
      builder.document()["materials"].push_back(material(name, field.colours(value)));
      builder.document()["meshes"].push_back(
          {{"name", name},
           {"primitives", Json::array({{{"attributes", attributes},
                                        {"indices", indices},
                                        {"material", mesh},
                                        {"mode", kLines}}})}});
      builder.show(name, mesh, places.transform(), {{"level", value}});
    }
  }
  builder.write(isBinary, file);
}

}  // namespace qelm::tool
