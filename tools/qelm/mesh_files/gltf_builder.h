// Writes glTF 2.0. In: positions, triangles, textures, step by step. Out: a .glb or .gltf file: a
// JSON document, and a buffer of numbers that it describes.
#ifndef QELM_TOOLS_GLTF_BUILDER_H
#define QELM_TOOLS_GLTF_BUILDER_H

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>

#include "mesh/mesh.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// A glTF document (Khronos, glTF 2.0, 2021) with one buffer, put together piece by piece.
class GltfBuilder {
 public:
  using Json = nlohmann::ordered_json;

  GltfBuilder();

  /// The document, but for what the functions below add to it.
  Json& document() { return document_; }

  /// Each adds an accessor and returns its number.
  std::size_t addPositions(std::span<const float> xyz);
  std::size_t addTextureCoordinates(std::span<const float> uv);
  std::size_t addScalars(std::span<const float> values);
  /// Red, green, blue and opacity, a byte each, which stand for 0 to 1.
  std::size_t addColours(std::span<const std::uint8_t> rgba);
  std::size_t addIndices(std::span<const std::uint32_t> indices);
  /// Adds an image, and a texture that does not repeat it; returns the texture's number.
  std::size_t addTexture(std::string_view png);
  /// Adds a node and shows it in the scene. `transform` has 16 numbers, column by column.
  void show(const std::string& name, std::size_t mesh, const Json& transform, const Json& extras);

  /// One file: .glb, or, if not `isBinary`, .gltf with the buffer as base64. Throws OutputError
  /// when it is larger than a .glb can be.
  void write(bool isBinary, ByteSink& file);

 private:
  std::size_t addView(std::string_view bytes, int target);
  std::size_t addAccessor(std::size_t view, int componentType, const char* type, std::size_t count);

  Json document_;
  std::string buffer_;
};

/// Places that single precision holds: as they are when it holds them exactly, else relative to
/// the middle of their box, which `transform` moves back. It also turns `up` (0, 1, 2 for x, y, z)
/// to where glTF has it, y.
class GltfPlaces {
 public:
  GltfPlaces(std::span<const double> xyz, std::size_t up);

  std::vector<float> rounded(std::span<const double> xyz) const;
  nlohmann::ordered_json transform() const;

 private:
  Point origin_{};
  std::size_t up_;
};

}  // namespace qelm::tool

#endif
