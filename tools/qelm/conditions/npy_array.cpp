#include "conditions/npy_array.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <optional>

#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

static_assert(std::endian::native == std::endian::little, "bytes of other machines are turned");

constexpr std::string_view kNpyMagic = "\x93NUMPY";

class NpyReader {
 public:
  NpyReader(std::string_view bytes, const std::string& name) : rest_(bytes), name_(name) {}

  NpyArray run() {
    if (!rest_.starts_with(kNpyMagic) || rest_.size() < 10)
      fail("not an NPY file: it does not begin with \\x93NUMPY");
    const int version = rest_[kNpyMagic.size()];
    if (version < 1 || version > 3)
      fail(fmt::format("format {} is not known; 1 to 3 are", version));
    rest_.remove_prefix(8);
    const std::size_t size = version == 1 ? take<std::uint16_t>() : take<std::uint32_t>();
    if (size > rest_.size()) fail("the file ends within its header; it may be cut short");
    header_ = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return array();
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw FileError(fmt::format("{}: {}", name_, what));
  }

  template <class Number>
  Number take() {
    Number number;
    if (rest_.size() < sizeof number) fail("the file ends here; it may be cut short");
    std::memcpy(&number, rest_.data(), sizeof number);
    rest_.remove_prefix(sizeof number);
    return number;
  }

  /// What follows 'key': in the header, to its end.
  std::string_view entry(std::string_view key) const {
    for (const char quote : {'\'', '"'}) {
      const std::string name = quote + std::string(key) + quote;
      const std::size_t at = header_.find(name);
      if (at == header_.npos) continue;
      const std::string_view rest = trimmed(header_.substr(at + name.size()));
      if (rest.starts_with(':')) return trimmed(rest.substr(1));
    }
    fail(fmt::format("the header has no '{}'", key));
  }

  NpyArray array() {
    const std::string_view description = entry("descr");
    if (description.size() < 5 || (description[0] != '\'' && description[0] != '"'))
      fail("arrays of records cannot be read; save one number for each vertex");
    const std::string_view type = description.substr(1, description.find(description[0], 1) - 1);
    const bool isFortran = entry("fortran_order").starts_with("True");
    NpyArray result;
    shape(result);
    const std::size_t size = itemSize(type);
    const std::size_t count = rest_.size() / size;
    if (result.columns > 0 && result.rows > count / result.columns)
      fail(fmt::format("an array of {} by {} is announced, but the file is too short for it",
                       result.rows, result.columns));
    result.values.resize(result.rows * result.columns);
    for (std::size_t k = 0; k < result.values.size(); ++k) {
      const std::size_t at = isFortran ? k % result.rows * result.columns + k / result.rows : k;
      result.values[at] = item(type, rest_.substr(k * size, size));
    }
    return result;
  }

  void shape(NpyArray& result) const {
    const std::string_view text = entry("shape");
    const std::size_t end = text.find(')');
    if (!text.starts_with('(') || end == text.npos) fail("the header's shape cannot be read");
    std::vector<std::size_t> sizes;
    for (const std::string_view word : splitAt(text.substr(1, end - 1), ',')) {
      if (trimmed(word).empty()) continue;
      const auto value = parseInteger(trimmed(word));
      if (!value || *value < 0) fail(fmt::format("'{}' in the shape is no size", word));
      sizes.push_back(asIndex(*value));
    }
    if (sizes.empty() || sizes.size() > 2)
      fail(fmt::format("the array has {} axes; give one with one or two", sizes.size()));
    result.rows = sizes[0];
    if (sizes.size() == 2) result.columns = sizes[1];
  }

  std::size_t itemSize(std::string_view type) const {
    const auto size = type.size() == 3 ? parseInteger(type.substr(2)) : std::nullopt;
    const bool isKnown = size && std::string_view("<>=|").find(type[0]) != std::string_view::npos &&
                         ((type[1] == 'f' && (*size == 4 || *size == 8)) ||
                          ((type[1] == 'i' || type[1] == 'u') &&
                           (*size == 1 || *size == 2 || *size == 4 || *size == 8)) ||
                          (type[1] == 'b' && *size == 1));
    if (!isKnown) fail(fmt::format("numbers of the type '{}' cannot be read; save doubles", type));
    return asIndex(*size);
  }

  static double item(std::string_view type, std::string_view bytes) {
    std::array<char, 8> raw = {};
    std::copy(bytes.begin(), bytes.end(), raw.begin());
    if (type[0] == '>') std::reverse(raw.begin(), raw.begin() + static_cast<long>(bytes.size()));
    const auto as = [&raw]<class Number>(Number number) {
      std::memcpy(&number, raw.data(), sizeof number);
      return static_cast<double>(number);
    };
    if (type[1] == 'f') return bytes.size() == 4 ? as(float{}) : as(double{});
    const bool isSigned = type[1] == 'i';
    switch (bytes.size()) {
      case 1:
        return isSigned ? as(std::int8_t{}) : as(std::uint8_t{});
      case 2:
        return isSigned ? as(std::int16_t{}) : as(std::uint16_t{});
      case 4:
        return isSigned ? as(std::int32_t{}) : as(std::uint32_t{});
      default:
        return isSigned ? as(std::int64_t{}) : as(std::uint64_t{});
    }
  }

  std::string_view rest_;
  std::string_view header_;
  const std::string& name_;
};

}  // namespace

bool isNpy(std::string_view bytes) { return bytes.starts_with(kNpyMagic); }

NpyArray parseNpy(std::string_view bytes, const std::string& name) {
  return NpyReader(bytes, name).run();
}

void writeNpy(std::span<const double> columns, std::size_t n, ByteSink& file) {
  const std::size_t count = columns.size() / n;
  const std::string shape =
      count == 1 ? fmt::format("({},)", n) : fmt::format("({}, {})", n, count);
  // The order of Fortran's arrays is that of ours: one column after another.
  std::string header = fmt::format("{{'descr': '<f8', 'fortran_order': {}, 'shape': {}, }}",
                                   count == 1 ? "False" : "True", shape);
  // Data begins at a multiple of 64, after a line's end.
  constexpr std::size_t kAlignment = 64;
  const std::size_t start = kNpyMagic.size() + 4;
  while ((start + header.size() + 1) % kAlignment != 0) header += ' ';
  header += '\n';
  std::string begin(kNpyMagic);
  begin += {'\x01', '\x00', static_cast<char>(header.size() & 0xff),
            static_cast<char>(header.size() >> 8)};
  file.write(begin + header);
  file.write({reinterpret_cast<const char*>(columns.data()), columns.size_bytes()});
}

}  // namespace qelm::tool
