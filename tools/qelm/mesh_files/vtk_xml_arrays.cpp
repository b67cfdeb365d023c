#include "mesh_files/vtk_xml_arrays.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "encodings/base64.h"
#include "encodings/inflate.h"
#include "encodings/number_source.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

constexpr std::array<std::pair<std::string_view, NumberType>, 10> kXmlTypes = {{
    {"Int8", NumberType::kInt8},
    {"UInt8", NumberType::kUint8},
    {"Int16", NumberType::kInt16},
    {"UInt16", NumberType::kUint16},
    {"Int32", NumberType::kInt32},
    {"UInt32", NumberType::kUint32},
    {"Int64", NumberType::kInt64},
    {"UInt64", NumberType::kUint64},
    {"Float32", NumberType::kFloat32},
    {"Float64", NumberType::kFloat64},
}};

// Of bytes and what they are compressed to. Memory for more is taken as it comes.
constexpr std::uint64_t kUsualRatio = 32;

std::size_t countAt(const XmlScanner& scanner, std::string_view key, std::size_t otherwise) {
  const auto text = scanner.plainAttribute(key);
  if (!text) return otherwise;
  const auto number = parseInteger(trimmed(*text));
  if (!number || *number < 0) scanner.fail(fmt::format("{}=\"{}\" is not a count", key, *text));
  return asIndex(*number);
}

}  // namespace

std::optional<VtkXmlArray> vtkXmlArrayAt(const XmlScanner& scanner) {
  VtkXmlArray array;
  array.name = scanner.attribute("Name").value_or("");
  const std::string_view type = scanner.plainAttribute("type").value_or("");
  const auto known = std::find_if(kXmlTypes.begin(), kXmlTypes.end(),
                                  [type](const auto& each) { return each.first == type; });
  if (known == kXmlTypes.end()) return {};
  array.type = known->second;
  array.components = std::max<std::size_t>(1, countAt(scanner, "NumberOfComponents", 1));
  array.text = scanner.text();
  const std::string_view form = scanner.plainAttribute("format").value_or("ascii");
  if (form == "binary") {
    array.form = VtkXmlArray::Form::kBase64;
  } else if (form == "appended") {
    array.form = VtkXmlArray::Form::kAppended;
    if (!scanner.plainAttribute("offset")) scanner.fail("appended data without an offset");
    array.offset = countAt(scanner, "offset", 0);
  } else if (form != "ascii") {
    scanner.fail(fmt::format("format=\"{}\" is none of ascii, binary and appended", form));
  }
  return array;
}

void VtkXmlNumbers::fail(const VtkXmlArray& array, const std::string& what) const {
  scanner_.failAt(array.text.data(), fmt::format("the array '{}': {}", array.name, what));
}

void VtkXmlNumbers::spend(const VtkXmlArray& array, std::size_t size) {
  if (size > left_) fail(array, "more data than the file can hold; arrays must not overlap");
  left_ -= size;
}

std::uint64_t VtkXmlNumbers::header(const VtkXmlArray& array, std::string_view stored,
                                    std::size_t k) const {
  const std::size_t size = sizeOf(storage_.header);
  if (stored.size() / size <= k) fail(array, "its header is cut short");
  const char* const place = stored.data() + k * size;
  return size == 4 ? numberAt<std::uint32_t>(place, storage_.order)
                   : numberAt<std::uint64_t>(place, storage_.order);
}

/// `stored` begins with the size of what follows.
template <class Sink>
void VtkXmlNumbers::appendPlain(const VtkXmlArray& array, std::string_view stored, Sink& sink) {
  const std::uint64_t size = header(array, stored, 0);
  const std::string_view rest = stored.substr(sizeOf(storage_.header));
  if (size > rest.size())
    fail(array, fmt::format("{} bytes are announced, {} are there", size, rest.size()));
  const std::string_view bytes = rest.substr(0, static_cast<std::size_t>(size));
  spend(array, bytes.size());
  sink.expect(bytes.size() / sizeOf(array.type));
  appendNumbers(bytes, array.type, storage_.order, sink);
}

/// `stored` begins with the number of blocks, the size of each but the last, the size of the last
/// one (0 when it is as large), and the compressed size of each. One block at a time is inflated;
/// a number may begin in one and end in the next.
template <class Sink>
void VtkXmlNumbers::appendInflated(const VtkXmlArray& array, std::string_view stored, Sink& sink) {
  const std::uint64_t blocks = header(array, stored, 0);
  if (blocks == 0) return;
  const std::size_t word = sizeOf(storage_.header);
  const std::uint64_t blockSize = header(array, stored, 1);
  const std::uint64_t lastSize = header(array, stored, 2);
  if (blocks > stored.size() / word) fail(array, "its header is cut short");
  std::string_view rest = stored.substr(std::min(stored.size(), word * (3 + blocks)));
  const std::size_t width = sizeOf(array.type);
  if (blockSize / kUsualRatio <= rest.size() / blocks) sink.expect(blocks * blockSize / width);
  std::string room;
  for (std::size_t k = 0; k < blocks; ++k) {
    const std::uint64_t size = header(array, stored, 3 + k);
    if (size > rest.size()) fail(array, fmt::format("block {} is cut short", k));
    spend(array, static_cast<std::size_t>(size));
    const bool isLast = k + 1 == blocks && lastSize != 0;
    if (!inflate(rest.substr(0, static_cast<std::size_t>(size)), Wrapping::kZlib,
                 static_cast<std::size_t>(isLast ? lastSize : blockSize), room))
      fail(array, fmt::format("block {} is damaged", k));
    rest.remove_prefix(static_cast<std::size_t>(size));
    const std::size_t whole = room.size() / width * width;
    appendNumbers(std::string_view(room).substr(0, whole), array.type, storage_.order, sink);
    room.erase(0, whole);
  }
}

template <class Sink>
void VtkXmlNumbers::decode(const VtkXmlArray& array, Sink& sink) {
  std::string letters;
  std::string_view stored = array.text;
  if (array.form == VtkXmlArray::Form::kAppended) {
    stored = storage_.appended;
    if (array.offset >= stored.size())
      fail(array, fmt::format("its offset {} is beyond the appended data", array.offset));
    stored.remove_prefix(array.offset);
  }
  const bool isAppended = array.form == VtkXmlArray::Form::kAppended;
  if (!isAppended || storage_.isAppendedBase64) {
    if (isAppended) {
      const std::vector<std::size_t>& offsets = storage_.offsets;
      const auto next = std::upper_bound(offsets.begin(), offsets.end(), array.offset);
      if (next != offsets.end()) stored = stored.substr(0, *next - array.offset);
      spend(array, stored.size());
    }
    auto decoded = fromBase64(stored);
    if (!decoded) fail(array, "damaged base64");
    letters = std::move(*decoded);
    stored = letters;
  }
  if (storage_.isCompressed)
    appendInflated(array, stored, sink);
  else
    appendPlain(array, stored, sink);
}

template <class Sink>
void VtkXmlNumbers::words(const VtkXmlArray& array, Sink& sink) const {
  using Number = typename Sink::Number;
  NumberSource source(array.text, name_, scanner_.lineOf(array.text.data()));
  for (source.skipBlanks(); !source.atEnd(); source.skipBlanks()) {
    if constexpr (std::is_floating_point_v<Number>)
      sink.push_back(source.number(array.type));
    else
      sink.push_back(wholeAs<Number>(source.integer(array.type)));
  }
}

template <class Sink>
Sink VtkXmlNumbers::read(const VtkXmlArray& array) {
  using Number = typename Sink::Number;
  if (!std::is_floating_point_v<Number> && !isWhole(array.type))
    fail(array, "whole numbers are needed here");
  Sink sink;
  if (array.form == VtkXmlArray::Form::kText)
    words(array, sink);
  else
    decode(array, sink);
  return sink;
}

std::vector<double> VtkXmlNumbers::numbers(const VtkXmlArray& array) {
  return read<Gathered<double>>(array).take();
}

std::vector<std::uint8_t> VtkXmlNumbers::types(const VtkXmlArray& array) {
  return read<Gathered<std::uint8_t>>(array).take();
}

CellEnds VtkXmlNumbers::ends(const VtkXmlArray& array) { return read<CellEnds>(array); }

Corners VtkXmlNumbers::corners(const VtkXmlArray& array) { return read<Corners>(array); }

}  // namespace qelm::tool
