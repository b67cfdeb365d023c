#include "mesh_files/gltf_builder.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <utility>
#include <vector>

#include "encodings/base64.h"
#include "text/error.h"
#include "text/text_block.h"

namespace qelm::tool {
namespace {

static_assert(std::endian::native == std::endian::little, "glTF is little-endian");

using Json = GltfBuilder::Json;

// OpenGL's constants, which glTF uses.
constexpr int kUnsignedByte = 5121;
constexpr int kUnsignedInt = 5125;
constexpr int kFloat = 5126;
constexpr int kArrayBuffer = 34962;
constexpr int kElementArrayBuffer = 34963;
constexpr int kClampToEdge = 33071;
constexpr int kLinear = 9729;

constexpr std::uint32_t kGlbMagic = 0x46546c67;   // "glTF"
constexpr std::uint32_t kJsonChunk = 0x4e4f534a;  // "JSON"
constexpr std::uint32_t kBinChunk = 0x004e4942;   // "BIN"

template <class Number>
std::string_view bytesOf(std::span<const Number> numbers) {
  return {reinterpret_cast<const char*>(numbers.data()), numbers.size_bytes()};
}

void pad(std::string& bytes, char with) { bytes.resize((bytes.size() + 3) / 4 * 4, with); }

}  // namespace

GltfBuilder::GltfBuilder() {
  document_["asset"] = {{"version", "2.0"}, {"generator", "qelm"}};
  document_["scene"] = 0;
  document_["scenes"] = {{{"nodes", Json::array()}}};
  for (const char* list : {"nodes", "meshes", "accessors", "bufferViews"})
    document_[list] = Json::array();
}

std::size_t GltfBuilder::addView(std::string_view bytes, int target) {
  pad(buffer_, '\0');
  Json view = {{"buffer", 0}, {"byteOffset", buffer_.size()}, {"byteLength", bytes.size()}};
  if (target != 0) view["target"] = target;
  buffer_ += bytes;
  document_["bufferViews"].push_back(std::move(view));
  return document_["bufferViews"].size() - 1;
}

std::size_t GltfBuilder::addAccessor(std::size_t view, int componentType, const char* type,
                                     std::size_t count) {
  document_["accessors"].push_back(
      {{"bufferView", view}, {"componentType", componentType}, {"count", count}, {"type", type}});
  return document_["accessors"].size() - 1;
}

std::size_t GltfBuilder::addPositions(std::span<const float> xyz) {
  const std::size_t accessor =
      addAccessor(addView(bytesOf(xyz), kArrayBuffer), kFloat, "VEC3", xyz.size() / 3);
  std::array<float, 3> low{};
  std::array<float, 3> high{};
  low.fill(std::numeric_limits<float>::infinity());
  high.fill(-std::numeric_limits<float>::infinity());
  for (std::size_t k = 0; k < xyz.size(); ++k) {
    low[k % 3] = std::min(low[k % 3], xyz[k]);
    high[k % 3] = std::max(high[k % 3], xyz[k]);
  }
  // As doubles: the same numbers, which the validators compare.
  document_["accessors"][accessor]["min"] = std::array<double, 3>{low[0], low[1], low[2]};
  document_["accessors"][accessor]["max"] = std::array<double, 3>{high[0], high[1], high[2]};
  return accessor;
}

std::size_t GltfBuilder::addTextureCoordinates(std::span<const float> uv) {
  return addAccessor(addView(bytesOf(uv), kArrayBuffer), kFloat, "VEC2", uv.size() / 2);
}

std::size_t GltfBuilder::addScalars(std::span<const float> values) {
  return addAccessor(addView(bytesOf(values), kArrayBuffer), kFloat, "SCALAR", values.size());
}

std::size_t GltfBuilder::addColours(std::span<const std::uint8_t> rgba) {
  const std::size_t accessor =
      addAccessor(addView(bytesOf(rgba), kArrayBuffer), kUnsignedByte, "VEC4", rgba.size() / 4);
  document_["accessors"][accessor]["normalized"] = true;
  return accessor;
}

std::size_t GltfBuilder::addIndices(std::span<const std::uint32_t> indices) {
  return addAccessor(addView(bytesOf(indices), kElementArrayBuffer), kUnsignedInt, "SCALAR",
                     indices.size());
}

std::size_t GltfBuilder::addTexture(std::string_view png) {
  document_["images"].push_back({{"mimeType", "image/png"}, {"bufferView", addView(png, 0)}});
  document_["samplers"].push_back({{"magFilter", kLinear},
                                   {"minFilter", kLinear},
                                   {"wrapS", kClampToEdge},
                                   {"wrapT", kClampToEdge}});
  const std::size_t number = document_["images"].size() - 1;
  document_["textures"].push_back({{"sampler", number}, {"source", number}});
  return number;
}

void GltfBuilder::show(const std::string& name, std::size_t mesh, const Json& transform,
                       const Json& extras) {
  Json node = {{"name", name}, {"mesh", mesh}, {"matrix", transform}};
  if (!extras.is_null()) node["extras"] = extras;
  document_["scenes"][0]["nodes"].push_back(document_["nodes"].size());
  document_["nodes"].push_back(std::move(node));
}

void GltfBuilder::write(bool isBinary, ByteSink& file) {
  pad(buffer_, '\0');
  if (buffer_.empty()) {  // a scene of nothing: there are no empty lists in glTF
    const Json asset = document_["asset"];
    document_ = {{"asset", asset}};
  } else {
    document_["buffers"] = {{{"byteLength", buffer_.size()}}};
  }
  const auto dumped = [this](int indent) {
    return document_.dump(indent, ' ', false, Json::error_handler_t::replace);
  };
  if (!isBinary) {
    constexpr std::string_view kUri = "data:application/octet-stream;base64,";
    if (!buffer_.empty()) document_["buffers"][0]["uri"] = kUri;
    const std::string text = dumped(1) + "\n";
    // The buffers are the document's last entry. Its writer would look at every letter of them.
    const std::size_t end = buffer_.empty() ? 0 : text.rfind(kUri) + kUri.size();
    file.write(std::string_view(text).substr(0, end));
    file.write(toBase64(buffer_));
    return file.write(std::string_view(text).substr(end));
  }
  std::string json = dumped(-1);
  pad(json, ' ');
  const std::size_t size = 12 + 8 + json.size() + 8 + buffer_.size();
  if (size > std::numeric_limits<std::uint32_t>::max())
    throw OutputError(
        fmt::format("a .glb file of {} bytes is larger than the format can be", size));
  TextBlock block(file);
  block.bytes(std::array<std::uint32_t, 5>{kGlbMagic, 2, static_cast<std::uint32_t>(size),
                                           static_cast<std::uint32_t>(json.size()), kJsonChunk});
  block.flush();
  file.write(json);
  block.bytes(std::array<std::uint32_t, 2>{static_cast<std::uint32_t>(buffer_.size()), kBinChunk});
  block.flush();
  file.write(buffer_);
}

GltfPlaces::GltfPlaces(std::span<const double> xyz, std::size_t up) : up_(up) {
  const bool isExact = std::all_of(xyz.begin(), xyz.end(), [](double c) {
    return static_cast<double>(static_cast<float>(c)) == c;
  });
  if (isExact || xyz.empty()) return;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    double low = xyz[axis];
    double high = xyz[axis];
    for (std::size_t k = axis; k < xyz.size(); k += 3) {
      low = std::min(low, xyz[k]);
      high = std::max(high, xyz[k]);
    }
    origin_[axis] = low / 2 + high / 2;
  }
}

std::vector<float> GltfPlaces::rounded(std::span<const double> xyz) const {
  std::vector<float> result;
  result.reserve(xyz.size());
  for (std::size_t k = 0; k < xyz.size(); ++k)
    result.push_back(static_cast<float>(xyz[k] - origin_[k % 3]));
  return result;
}

Json GltfPlaces::transform() const {
  const auto [x, y, z] = origin_;
  if (up_ == 1) return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1};
  // (x, y, z) becomes (-y, x, z), or (x, z, -y).
  if (up_ == 0) return {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, -y, x, z, 1};
  return {1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, x, z, -y, 1};
}

}  // namespace qelm::tool
