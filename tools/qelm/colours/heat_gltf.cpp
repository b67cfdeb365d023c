#include "colours/heat_gltf.h"

#include <cstdint>
#include <vector>

#include "colours/ramp_image.h"
#include "mesh_files/gltf_builder.h"

namespace qelm::tool {
namespace {

/// Texture coordinates: from the middle of the ramp's first column, for the largest value, to the
/// middle of its last one.
std::vector<float> rampPlaces(std::span<const double> field, const ColourScale& scale) {
  std::vector<float> uv;
  uv.reserve(2 * field.size());
  for (const double value : field) {
    uv.push_back(
        static_cast<float>(((1 - scale.part(value)) * (kRampWidth - 1) + 0.5) / kRampWidth));
    uv.push_back(0.5F);
  }
  return uv;
}

std::vector<std::uint8_t> coloursOf(std::span<const double> field, const ColourScale& scale) {
  std::vector<std::uint8_t> rgba;
  rgba.reserve(4 * field.size());
  for (const double value : field) {
    const Colour colour = scale(value);
    rgba.insert(rgba.end(), {colour[0], colour[1], colour[2], 255});
  }
  return rgba;
}

}  // namespace

void writeHeatGltf(const Mesh& mesh, std::span<const double> field, const ColourScale& scale,
                   const Caption& caption, std::size_t up, bool isBinary, ByteSink& file) {
  const GltfPlaces places(mesh.vertices, up);
  const std::vector<std::uint32_t> corners(mesh.triangles.begin(), mesh.triangles.end());
  GltfBuilder builder;
  const std::size_t texture = builder.addTexture(rampImage(scale.ramp));
  // Light would change the colours, which are to be compared with the ramp.
  builder.document()["extensionsUsed"] = {"KHR_materials_unlit"};
  builder.document()["materials"] = {
      {{"name", "Heat"},
       {"doubleSided", true},
       {"pbrMetallicRoughness",
        {{"baseColorTexture", {{"index", texture}}},
         {"metallicFactor", 0},
         {"roughnessFactor", 0.8}}},
       {"extensions", {{"KHR_materials_unlit", GltfBuilder::Json::object()}}}}};
  const GltfBuilder::Json attributes = {
      {"POSITION", builder.addPositions(places.rounded(mesh.vertices))},
      {"TEXCOORD_0", builder.addTextureCoordinates(rampPlaces(field, scale))},
      {"_VALUE", builder.addScalars(std::vector<float>(field.begin(), field.end()))},
      {"_COLOR", builder.addColours(coloursOf(field, scale))}};
  builder.document()["meshes"].push_back(
      {{"primitives", GltfBuilder::Json::array({{{"attributes", attributes},
                                                 {"indices", builder.addIndices(corners)},
                                                 {"material", 0}}})}});
  const GltfBuilder::Json extras =
      caption.unit.empty() ? nullptr : GltfBuilder::Json{{"unit", caption.unit}};
  builder.show(caption.title.empty() ? "mesh" : caption.title, 0, places.transform(), extras);
  builder.write(isBinary, file);
}

}  // namespace qelm::tool
