#include "mesh_files/gltf_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

#include "encodings/base64.h"
#include "encodings/numbers.h"
#include "files/file_bytes.h"
#include "files/paths.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

using Json = GltfFile::Json;

constexpr std::uint32_t kGlbJson = 0x4e4f534a;
constexpr std::uint32_t kGlbBuffer = 0x004e4942;
constexpr std::size_t kGlbHeader = 12;
constexpr std::size_t kChunkHeader = 8;

// Accessors without stored numbers are all zero: so many are believed besides one for each byte.
constexpr std::size_t kFreeZeros = 1000;

std::uint32_t wordAt(std::string_view bytes, std::size_t at) {
  return numberAt<std::uint32_t>(bytes.data() + at, ByteOrder::kLittle);
}

std::optional<NumberType> numberType(std::size_t componentType) {
  switch (componentType) {
    case 5120:
      return NumberType::kInt8;
    case 5121:
      return NumberType::kUint8;
    case 5122:
      return NumberType::kInt16;
    case 5123:
      return NumberType::kUint16;
    case 5125:
      return NumberType::kUint32;
    case 5126:
      return NumberType::kFloat32;
    default:
      return {};
  }
}

/// "%20" and the like.
std::string decodedUri(std::string_view uri) {
  std::string result;
  for (std::size_t k = 0; k < uri.size(); ++k) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const auto digit = [&](std::size_t at) {
      return at < uri.size() ? kDigits.find(static_cast<char>(uri[at] | 0x20)) : kDigits.npos;
    };
    const bool isCode = uri[k] == '%' && digit(k + 1) < 16 && digit(k + 2) < 16;
    result += isCode
                  ? static_cast<char>(static_cast<unsigned char>(16 * digit(k + 1) + digit(k + 2)))
                  : uri[k];
    if (isCode) k += 2;
  }
  return result;
}

/// What a stored whole number means (glTF 2.0, 3.6.2.2): of its type's range the part.
template <class Number>
double normalised(Number number) {
  if constexpr (std::is_floating_point_v<Number>)
    return static_cast<double>(number);
  else
    return std::max(
        static_cast<double>(number) / static_cast<double>(std::numeric_limits<Number>::max()),
        -1.0);
}

template <class To>
struct BlockSink {
  using Number = To;
  const GltfFile::Use<To>& append;
};

}  // namespace

/// Where an accessor's numbers lie: element k begins at k * stride.
struct GltfFile::Stored {
  std::string_view bytes;
  std::size_t stride;
  NumberType type;

  /// Converts the numbers of element k.
  template <class Number>
  void convert(std::size_t k, std::size_t components, bool isNormalised, Number* to) const {
    forEachNumber(bytes.substr(k * stride, components * sizeOf(type)), type, ByteOrder::kLittle,
                  [&](auto number) {
                    *to++ = isNormalised ? static_cast<Number>(normalised(number))
                                         : converted<Number>(number);
                  });
  }
};

GltfFile::GltfFile(std::string_view bytes, const std::string& name, std::filesystem::path folder)
    : name_(name), folder_(std::move(folder)), size_(bytes.size()) {
  if (bytes.starts_with("glTF"))
    readBinary(bytes);
  else
    parse(bytes);
  const Json* const asset =
      document_.is_object() && document_.contains("asset") ? &document_["asset"] : nullptr;
  const bool hasVersion = asset != nullptr && asset->is_object() && asset->contains("version") &&
                          (*asset)["version"].is_string();
  if (!hasVersion) fail("not a glTF file: it names no version");
  const auto version = (*asset)["version"].get<std::string>();
  if (!version.starts_with("2."))
    fail(fmt::format("glTF {} cannot be read; save it as glTF 2.0", version));
  checkExtensions();
  buffers_.resize(list("buffers").size());
}

void GltfFile::fail(const std::string& what) const {
  throw FileError(fmt::format("{}: {}", name_, what));
}

void GltfFile::parse(std::string_view json) {
  try {
    document_ = Json::parse(json.begin(), json.end());
  } catch (const Json::parse_error& error) {
    const std::size_t end = std::min(error.byte, json.size());
    const auto line =
        1 + std::count(json.begin(), json.begin() + static_cast<std::ptrdiff_t>(end), '\n');
    throw FileError(fmt::format("{}:{}: not a glTF file: damaged JSON", name_, line));
  } catch (const Json::out_of_range&) {
    fail("not a glTF file: a number in its JSON is beyond every double");
  }
}

void GltfFile::readBinary(std::string_view bytes) {
  if (bytes.size() < kGlbHeader + kChunkHeader) fail("not a glTF file, or cut short");
  if (wordAt(bytes, 4) != 2)
    fail(fmt::format("glTF {} cannot be read; save it as glTF 2.0", wordAt(bytes, 4)));
  if (wordAt(bytes, 8) > bytes.size())
    fail(fmt::format("{} bytes are announced, {} are there; it may be cut short", wordAt(bytes, 8),
                     bytes.size()));
  std::string_view rest = bytes.substr(
      kGlbHeader, wordAt(bytes, 8) - std::min<std::size_t>(kGlbHeader, wordAt(bytes, 8)));
  bool isFirst = true;
  while (rest.size() >= kChunkHeader) {
    const std::size_t size = wordAt(rest, 0);
    const std::uint32_t kind = wordAt(rest, 4);
    rest.remove_prefix(kChunkHeader);
    if (size > rest.size()) fail("a chunk is cut short");
    if (isFirst && kind != kGlbJson) fail("the first chunk is no JSON");
    if (isFirst) parse(rest.substr(0, size));
    if (!isFirst && kind == kGlbBuffer && !chunk_) chunk_ = rest.substr(0, size);
    isFirst = false;
    rest.remove_prefix(size);
  }
}

/// Extensions that change what the triangles are. Those of pictures do not matter here.
void GltfFile::checkExtensions() const {
  for (const Json& required : list("extensionsRequired")) {
    const std::string extension = required.is_string() ? required.get<std::string>() : "?";
    const bool isOfPictures =
        extension == "KHR_mesh_quantization" || extension == "KHR_lights_punctual" ||
        extension.starts_with("KHR_materials_") || extension.starts_with("KHR_texture_") ||
        extension.starts_with("EXT_texture_");
    if (isOfPictures) continue;
    const bool isCompression =
        extension == "KHR_draco_mesh_compression" || extension == "EXT_meshopt_compression";
    fail(fmt::format("it needs the extension {}, which is not read here; save it without {}",
                     extension, isCompression ? "compression" : "that"));
  }
}

const Json& GltfFile::list(const char* name) const {
  static const Json kNothing = Json::array();
  const auto found = document_.find(name);
  if (found == document_.end()) return kNothing;
  if (!found->is_array()) fail(fmt::format("'{}' is not a list", name));
  return *found;
}

const Json& GltfFile::entry(const char* name, std::size_t number) const {
  const Json& entries = list(name);
  if (number >= entries.size())
    fail(fmt::format("'{}' has {} entries; there is none with the number {}", name, entries.size(),
                     number));
  if (!entries[number].is_object()) fail(fmt::format("entry {} of '{}' is empty", number, name));
  return entries[number];
}

std::optional<std::size_t> GltfFile::whole(const Json& object, const char* key,
                                           const std::string& where) const {
  const auto found = object.find(key);
  if (found == object.end()) return {};
  // Some programs write 3.0 for 3.
  constexpr double kMost = 9007199254740992.0;  // 2^53
  const double number = found->is_number() ? found->get<double>() : -1;
  if (!(number >= 0 && number <= kMost) || std::trunc(number) != number)
    fail(fmt::format("{}: '{}' is not a count or number of an entry", where, key));
  return static_cast<std::size_t>(number);
}

std::size_t GltfFile::wholeOr(const Json& object, const char* key, std::size_t otherwise,
                              const std::string& where) const {
  return whole(object, key, where).value_or(otherwise);
}

std::optional<std::vector<double>> GltfFile::numbers(const Json& object, const char* key,
                                                     std::size_t count,
                                                     const std::string& where) const {
  const auto found = object.find(key);
  if (found == object.end()) return {};
  std::vector<double> result;
  if (found->is_array() && found->size() == count)
    for (const Json& number : *found)
      if (number.is_number()) result.push_back(number.get<double>());
  if (result.size() != count) fail(fmt::format("{}: '{}' must be {} numbers", where, key, count));
  return result;
}

std::string GltfFile::bufferOf(const std::string& uri, std::size_t number) const {
  if (uri.starts_with("data:")) {
    const std::size_t comma = uri.find(";base64,");
    auto bytes =
        comma == uri.npos ? std::nullopt : fromBase64(std::string_view(uri).substr(comma + 8));
    if (!bytes) fail(fmt::format("buffer {}: damaged base64", number));
    return std::move(*bytes);
  }
  const std::string decoded = decodedUri(uri);
  const std::filesystem::path path = toPath(printable(decoded) == decoded ? decoded : "?");
  const bool leaves = path.is_absolute() || path.has_root_path() ||
                      decoded.find(':') != decoded.npos ||
                      std::find(path.begin(), path.end(), "..") != path.end();
  if (leaves || decoded.empty())
    fail(fmt::format("buffer {}: '{}' is not a file in its folder or below", number, uri));
  try {
    return readFile(folder_ / path);
  } catch (const FileError& error) {
    fail(fmt::format("buffer {}: {}", number, error.what()));
  }
}

std::string_view GltfFile::buffer(std::size_t number) {
  const Json& entry = this->entry("buffers", number);
  const std::string where = fmt::format("buffer {}", number);
  const auto uri = entry.find("uri");
  std::string_view bytes;
  if (uri == entry.end()) {
    if (number != 0 || !chunk_) fail(where + ": it is not in the file");
    bytes = *chunk_;
  } else {
    if (!uri->is_string()) fail(where + ": 'uri' is not a text");
    if (!buffers_[number]) {
      buffers_[number] = bufferOf(uri->get<std::string>(), number);
      size_ += buffers_[number]->size();
    }
    bytes = *buffers_[number];
  }
  const std::size_t size = wholeOr(entry, "byteLength", 0, where);
  if (size > bytes.size())
    fail(fmt::format("{}: {} bytes are announced, {} are there", where, size, bytes.size()));
  return bytes.substr(0, size);
}

std::string_view GltfFile::view(std::size_t number, std::size_t offset, const std::string& where,
                                std::size_t& stride) {
  const Json& entry = this->entry("bufferViews", number);
  const std::string_view bytes = buffer(wholeOr(entry, "buffer", 0, where));
  const std::size_t begin = wholeOr(entry, "byteOffset", 0, where);
  const std::size_t size = wholeOr(entry, "byteLength", 0, where);
  stride = wholeOr(entry, "byteStride", stride, where);
  if (begin > bytes.size() || size > bytes.size() - begin || offset > size)
    fail(fmt::format("{}: beyond the end of its buffer", where));
  return bytes.substr(begin + offset, size - offset);
}

GltfFile::Stored GltfFile::stored(const Json& object, std::size_t count, int type,
                                  std::size_t components, const std::string& where) {
  const auto number = numberType(static_cast<std::size_t>(type));
  if (!number) fail(fmt::format("{}: there are no numbers of type {}", where, type));
  const std::size_t size = components * sizeOf(*number);
  std::size_t stride = size;
  const std::string_view bytes = view(wholeOr(object, "bufferView", 0, where),
                                      wholeOr(object, "byteOffset", 0, where), where, stride);
  if (stride < size) fail(where + ": elements overlap");
  if (count > 0 && (bytes.size() < size || count - 1 > (bytes.size() - size) / stride))
    fail(fmt::format("{}: {} elements are announced, but its buffer is too short", where, count));
  return {bytes, stride, *number};
}

std::size_t GltfFile::count(std::size_t accessor) const {
  return wholeOr(entry("accessors", accessor), "count", 0, fmt::format("accessor {}", accessor));
}

std::size_t GltfFile::components(std::size_t accessor) const {
  const Json& object = entry("accessors", accessor);
  const auto type = object.find("type");
  constexpr std::array<std::pair<const char*, std::size_t>, 4> kTypes = {
      {{"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3}, {"VEC4", 4}}};
  if (type != object.end())
    for (const auto& [known, components] : kTypes)
      if (*type == known) return components;
  return 0;
}

/// Calls `read(from, k, place)` for each element that is changed: it becomes element k of `from`.
template <class Read>
void GltfFile::changeSome(const Json& sparse, std::size_t count, int type, std::size_t components,
                          const std::string& where, Read read) {
  const std::size_t changed = wholeOr(sparse, "count", 0, where);
  const Json nothing = Json::object();
  const Json& places = sparse.contains("indices") ? sparse["indices"] : nothing;
  const Json& numbers = sparse.contains("values") ? sparse["values"] : nothing;
  const int placeType =
      static_cast<int>(std::min<std::size_t>(wholeOr(places, "componentType", 0, where), 9999));
  const Stored which = stored(places, changed, placeType, 1, where);
  const Stored what = stored(numbers, changed, type, components, where);
  for (std::size_t k = 0; k < changed; ++k) {
    std::size_t place = count;
    forEachNumber(which.bytes.substr(k * which.stride, sizeOf(which.type)), which.type,
                  ByteOrder::kLittle, [&place](auto number) {
                    const std::int64_t at = wholeOf(number);
                    if (at >= 0) place = asIndex(at);
                  });
    if (place >= count) fail(fmt::format("{}: it has no element {} to change", where, place));
    read(what, k, place);
  }
}

template <class Number>
void GltfFile::elements(std::size_t accessor, std::size_t components, bool isNormalised,
                        const Use<Number>& use) {
  const std::string where = fmt::format("accessor {}", accessor);
  const Json& object = entry("accessors", accessor);
  if (this->components(accessor) != components)
    fail(fmt::format("{}: {} numbers for each element are needed", where, components));
  const std::size_t count = this->count(accessor);
  const int type =
      static_cast<int>(std::min<std::size_t>(wholeOr(object, "componentType", 0, where), 9999));
  const auto sparse = object.find("sparse");
  std::vector<Number> all;
  const auto read = [&](const Stored& from, std::size_t k, std::size_t place) {
    from.convert(k, components, isNormalised, all.data() + place * components);
  };
  if (object.contains("bufferView")) {
    const Stored from = stored(object, count, type, components, where);
    const std::size_t size = components * sizeOf(from.type);
    if (from.stride == size && !isNormalised && sparse == object.end()) {
      BlockSink<Number> sink{use};
      return appendNumbers(from.bytes.substr(0, count * size), from.type, ByteOrder::kLittle, sink);
    }
    all.resize(count * components);
    for (std::size_t k = 0; k < count; ++k) read(from, k, k);
  } else {
    if (count > size_ + kFreeZeros)
      fail(fmt::format("{}: {} elements that are nowhere", where, count));
    all.resize(count * components);
  }
  if (sparse != object.end()) changeSome(*sparse, count, type, components, where, read);
  use(all);
}

void GltfFile::values(std::size_t accessor, std::size_t components, const Use<double>& use) {
  const Json& object = entry("accessors", accessor);
  const auto flag = object.find("normalized");
  elements(accessor, components, flag != object.end() && *flag == true, use);
}

std::vector<double> GltfFile::values(std::size_t accessor, std::size_t components) {
  Gathered<double> all;
  values(accessor, components, [&](std::span<const double> block) {
    if (all.empty()) all.expect(count(accessor) * components);
    all.append(block);
  });
  return all.take();
}

void GltfFile::indices(std::size_t accessor, const Use<std::uint32_t>& use) {
  elements(accessor, 1, false, use);
}

}  // namespace qelm::tool
