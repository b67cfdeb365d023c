#include "mesh_files/vtk_xml.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "encodings/xml_scanner.h"
#include "mesh_files/cell_soup.h"
#include "mesh_files/vtk_xml_arrays.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

using Event = XmlScanner::Event;

/// Cells of one kind in a piece, as two or three arrays.
struct CellSection {
  std::size_t count = 0;
  std::map<std::string, VtkXmlArray, std::less<>> arrays;
};

struct Piece {
  const char* place = nullptr;
  std::size_t points = 0;
  std::vector<VtkXmlArray> coordinates;
  std::vector<VtkXmlArray> data;
  std::map<std::string, CellSection, std::less<>> cells;  ///< by the element's name
};

class VtkXmlReader {
 public:
  VtkXmlReader(std::string_view bytes, const std::string& name)
      : bytes_(bytes), name_(name), scanner_(bytes, name), soup_(name) {}

  PolygonSoup run() {
    if (scanner_.next() != Event::kBegin || scanner_.element() != "VTKFile")
      scanner_.fail("not a VTK file: it does not begin with <VTKFile>");
    root();
    scan();
    std::sort(storage_.offsets.begin(), storage_.offsets.end());
    VtkXmlNumbers numbers(storage_, scanner_, bytes_, name_);
    for (const Piece& piece : pieces_) add(piece, numbers);
    return soup_.finish();
  }

 private:
  std::string_view plain(std::string_view key) const {
    return scanner_.plainAttribute(key).value_or("");
  }

  void root() {
    const std::string_view type = plain("type");
    if (type != "PolyData" && type != "UnstructuredGrid")
      scanner_.fail(fmt::format(
          "a file of type '{}' is not a mesh of triangles; save its surface as PolyData (.vtp)",
          type));
    if (plain("byte_order") == "BigEndian") storage_.order = ByteOrder::kBig;
    if (plain("header_type") == "UInt64") storage_.header = NumberType::kUint64;
    const std::string_view compressor = plain("compressor");
    storage_.isCompressed = !compressor.empty();
    if (storage_.isCompressed && compressor != "vtkZLibDataCompressor")
      scanner_.fail(
          fmt::format("compressed by {}; only zlib is taken: save it with zlib, or "
                      "without compression",
                      compressor));
  }

  /// Tags up to the appended data, behind which may be anything.
  void scan() {
    for (Event event = scanner_.next(); event != Event::kDone; event = scanner_.next()) {
      const std::string_view element = scanner_.element();
      if (event == Event::kEnd) {
        end(element);
      } else if (element == "AppendedData") {
        return appended();
      } else if (element == "Piece") {
        beginPiece();
      } else if (element == "DataArray" || element == "Array") {
        beginArray();
      } else if (scanner_.depth() == kSectionDepth) {
        section_ = element;
      }
    }
  }

  // VTKFile, PolyData, Piece, Points.
  static constexpr std::size_t kSectionDepth = 4;

  void end(std::string_view element) {
    if (element == "DataArray") inArray_ = nullptr;
    // VTK may put notes of its own between the tag and the text.
    if (element == "InformationKey" && inArray_ != nullptr && trimmed(inArray_->text).empty())
      inArray_->text = scanner_.text();
  }

  std::size_t count(std::string_view key) const {
    const std::string_view text = plain(key);
    const auto number = parseInteger(trimmed(text));
    if (!text.empty() && (!number || *number < 0))
      scanner_.fail(fmt::format("{}=\"{}\" is not a count", key, text));
    return text.empty() ? 0 : asIndex(*number);
  }

  void beginPiece() {
    Piece piece;
    piece.place = scanner_.text().data();
    piece.points = count("NumberOfPoints");
    piece.cells["Polys"].count = count("NumberOfPolys");
    piece.cells["Strips"].count = count("NumberOfStrips");
    piece.cells["Cells"].count = count("NumberOfCells");
    if (count("NumberOfVerts") + count("NumberOfLines") > 0) soup_.passOver("points and lines");
    pieces_.push_back(std::move(piece));
  }

  void beginArray() {
    if (pieces_.empty() || scanner_.depth() != kSectionDepth + 1) return;
    auto array = vtkXmlArrayAt(scanner_);
    if (!array) return soup_.passOver("arrays of text");
    if (array->form == VtkXmlArray::Form::kAppended) storage_.offsets.push_back(array->offset);
    Piece& piece = pieces_.back();
    if (section_ == "Points")
      inArray_ = &piece.coordinates.emplace_back(std::move(*array));
    else if (section_ == "PointData")
      inArray_ = &piece.data.emplace_back(std::move(*array));
    else if (section_ == "CellData")
      soup_.passOver("cell data");
    else if (const auto cells = piece.cells.find(section_); cells != piece.cells.end())
      inArray_ = &(cells->second.arrays[array->name] = std::move(*array));
  }

  void appended() {
    storage_.isAppendedBase64 = plain("encoding") == "base64";
    const std::string_view rest = scanner_.rest();
    const std::size_t begin = rest.find('_');
    if (begin == rest.npos) scanner_.fail("no '_' before the appended data");
    storage_.appended = rest.substr(begin + 1);
    if (storage_.isAppendedBase64)
      storage_.appended = storage_.appended.substr(0, storage_.appended.find('<'));
  }

  void add(const Piece& piece, VtkXmlNumbers& numbers) {
    if (piece.points > 0 && piece.coordinates.empty())
      scanner_.failAt(piece.place, "a piece without <Points>");
    std::vector<double> coordinates;
    if (!piece.coordinates.empty()) coordinates = numbers.numbers(piece.coordinates[0]);
    require(piece, "Points", coordinates.size(), piece.points, 3);
    soup_.addPoints(std::move(coordinates));
    for (const auto& [section, cells] : piece.cells) addCells(piece, section, cells, numbers);
    for (const VtkXmlArray& array : piece.data) {
      const std::vector<double> values = numbers.numbers(array);
      require(piece, array.name, values.size(), piece.points, array.components);
      soup_.addArray(array.name, array.components, values);
    }
  }

  void require(const Piece& piece, const std::string& what, std::size_t found, std::size_t tuples,
               std::size_t components) const {
    if (found % components != 0 || found / components != tuples)
      scanner_.failAt(piece.place, fmt::format("'{}' has {} numbers, not {} times {}", what, found,
                                               tuples, components));
  }

  void addCells(const Piece& piece, const std::string& section, const CellSection& cells,
                VtkXmlNumbers& numbers) {
    if (cells.count == 0) return;
    const auto array = [&](const char* key) -> const VtkXmlArray& {
      const auto found = cells.arrays.find(key);
      if (found == cells.arrays.end())
        scanner_.failAt(piece.place, fmt::format("<{}> has no array '{}'", section, key));
      return found->second;
    };
    CellList found{numbers.ends(array("offsets")), numbers.corners(array("connectivity"))};
    require(piece, "offsets", found.ends.size(), cells.count, 1);
    if (section == "Polys") soup_.addPolygons(std::move(found));
    if (section == "Strips") soup_.addStrips(found);
    if (section == "Cells") soup_.addCells(std::move(found), numbers.types(array("types")));
  }

  std::string_view bytes_;
  const std::string& name_;
  XmlScanner scanner_;
  CellSoup soup_;
  VtkXmlStorage storage_;
  std::vector<Piece> pieces_;
  std::string section_;
  VtkXmlArray* inArray_ = nullptr;
};

}  // namespace

PolygonSoup readVtkXml(std::string_view bytes, const std::string& name) {
  return VtkXmlReader(bytes, name).run();
}

}  // namespace qelm::tool
