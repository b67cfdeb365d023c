// The file itself of a glTF mesh, for its reader. In: a file's bytes. Out: its JSON document, and
// the numbers that its accessors (typed views of its buffers) stand for.
#ifndef QELM_TOOLS_GLTF_FILE_H
#define QELM_TOOLS_GLTF_FILE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qelm::tool {

/// All functions throw FileError that names the file and the element, such as "accessor 3".
class GltfFile {
 public:
  using Json = nlohmann::json;

  /// A .glb or .gltf file's bytes. `folder` is where buffers in files of their own lie.
  GltfFile(std::string_view bytes, const std::string& name, std::filesystem::path folder);

  const Json& document() const { return document_; }
  /// Of everything that was read, for bounds on what may become of it.
  std::size_t size() const { return size_; }

  /// An array of the document, empty when it is not there.
  const Json& list(const char* name) const;
  /// An entry of it.
  const Json& entry(const char* name, std::size_t number) const;

  /// A whole number that `object` may have under a key. `where` is for messages.
  std::optional<std::size_t> whole(const Json& object, const char* key,
                                   const std::string& where) const;
  std::size_t wholeOr(const Json& object, const char* key, std::size_t otherwise,
                      const std::string& where) const;
  /// So many numbers, or nothing.
  std::optional<std::vector<double>> numbers(const Json& object, const char* key, std::size_t count,
                                             const std::string& where) const;

  /// What takes numbers, block by block. Blocks of an accessor are whole elements, and none comes
  /// before it is known that the file has all of them.
  template <class Number>
  using Use = std::function<void(std::span<const Number>)>;

  /// The numbers of an accessor, `components` for each element. Normalised ones are what they mean.
  void values(std::size_t accessor, std::size_t components, const Use<double>& use);
  std::vector<double> values(std::size_t accessor, std::size_t components);
  /// The nearest whole numbers of their type.
  void indices(std::size_t accessor, const Use<std::uint32_t>& use);
  /// How many elements it has.
  std::size_t count(std::size_t accessor) const;
  /// How many numbers each of them has.
  std::size_t components(std::size_t accessor) const;

  [[noreturn]] void fail(const std::string& what) const;

 private:
  struct Stored;

  void parse(std::string_view json);
  void readBinary(std::string_view bytes);
  void checkExtensions() const;
  std::string_view buffer(std::size_t number);
  std::string bufferOf(const std::string& uri, std::size_t number) const;
  std::string_view view(std::size_t number, std::size_t offset, const std::string& where,
                        std::size_t& stride);
  Stored stored(const Json& object, std::size_t count, int type, std::size_t components,
                const std::string& where);
  template <class Number>
  void elements(std::size_t accessor, std::size_t components, bool isNormalised,
                const Use<Number>& use);
  template <class Read>
  void changeSome(const Json& sparse, std::size_t count, int type, std::size_t components,
                  const std::string& where, Read read);

  const std::string& name_;
  std::filesystem::path folder_;
  Json document_;
  std::optional<std::string_view> chunk_;  ///< the buffer within a .glb
  std::vector<std::optional<std::string>> buffers_;
  std::size_t size_;
};

}  // namespace qelm::tool

#endif
