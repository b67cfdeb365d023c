#include "mesh_files/vtk_writer.h"

#include <fmt/format.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "text/index.h"
#include "text/text.h"
#include "text/text_block.h"

namespace qelm::tool {
namespace {

static_assert(std::endian::native == std::endian::little, "byte_order=\"LittleEndian\"");

constexpr std::uint8_t kTriangle = 5;  // vtkCellType.h

template <class Number>
std::string_view bytesOf(std::span<const Number> numbers) {
  return {reinterpret_cast<const char*>(numbers.data()), numbers.size_bytes()};
}

/// What may not stand in a comment of XML is written otherwise.
std::string inComment(const std::string& text) {
  if (text.empty()) return "";
  std::string result = ": " + printable(oneLine(text));
  for (std::size_t at = 0; (at = result.find("--", at)) != result.npos;)
    result.insert(++at, 1, ' ');
  return result;
}

class VtkXmlWriter {
 public:
  VtkXmlWriter(const VtkOutput& output, VtkKind kind, ByteSink& file)
      : output_(output), kind_(kind), block_(file), file_(file) {}

  void run() {
    const bool isGrid = kind_ == VtkKind::kTriangles;
    const char* const type = isGrid ? "UnstructuredGrid" : "PolyData";
    block_.text(
        "<?xml version=\"1.0\"?>\n<VTKFile type=\"{}\" version=\"1.0\" "
        "byte_order=\"LittleEndian\" header_type=\"UInt64\">\n<!-- written by qelm{} -->\n<{}>\n",
        type, inComment(output_.comment), type);
    block_.text("<Piece NumberOfPoints=\"{}\" ", output_.points.size() / 3);
    if (isGrid)
      block_.text("NumberOfCells=\"{}\">\n", output_.ends.size());
    else
      block_.text(
          "NumberOfVerts=\"0\" NumberOfLines=\"{}\" NumberOfStrips=\"0\" "
          "NumberOfPolys=\"{}\">\n",
          kind_ == VtkKind::kLines ? output_.ends.size() : 0,
          kind_ == VtkKind::kPolygons ? output_.ends.size() : 0);
    columns("PointData", output_.pointData);
    columns("CellData", output_.cellData);
    block_.text("<Points>\n");
    array("Points", "Float64", 3, bytesOf(output_.points));
    block_.text("</Points>\n");
    cells();
    block_.text("</Piece>\n</{}>\n<AppendedData encoding=\"raw\">\n_", type);
    block_.flush();
    for (const std::string_view bytes : appended_) {
      block_.bytes(std::uint64_t{bytes.size()});
      block_.flush();
      file_.write(bytes);
    }
    block_.text("\n</AppendedData>\n</VTKFile>\n");
    block_.flush();
  }

 private:
  void columns(const char* element, std::span<const VtkColumn> columns) {
    if (columns.empty()) return;
    block_.text("<{}", element);
    // Which of them a program shows at first.
    for (const auto& [attribute, components] : {std::pair("Scalars", 1), std::pair("Vectors", 3)})
      for (const VtkColumn& column : columns)
        if (column.components == components) {
          block_.text(" {}=\"{}\"", attribute, column.name);
          break;
        }
    block_.text(">\n");
    for (const VtkColumn& column : columns)
      array(column.name, "Float64", column.components, bytesOf(column.values));
    block_.text("</{}>\n", element);
  }

  void cells() {
    const char* const element = kind_ == VtkKind::kTriangles ? "Cells"
                                : kind_ == VtkKind::kLines   ? "Lines"
                                                             : "Polys";
    block_.text("<{}>\n", element);
    array("connectivity", "Int32", 1, bytesOf(output_.corners));
    array("offsets", "Int32", 1, bytesOf(output_.ends));
    if (kind_ == VtkKind::kTriangles) {
      types_.assign(output_.ends.size(), kTriangle);
      array("types", "UInt8", 1, bytesOf(std::span<const std::uint8_t>(types_)));
    }
    block_.text("</{}>\n", element);
  }

  void array(std::string_view name, const char* type, int components, std::string_view bytes) {
    block_.text(
        "<DataArray type=\"{}\" Name=\"{}\" NumberOfComponents=\"{}\" format=\"appended\" "
        "offset=\"{}\"/>\n",
        type, name, components, offset_);
    appended_.push_back(bytes);
    offset_ += sizeof(std::uint64_t) + bytes.size();
  }

  const VtkOutput& output_;
  VtkKind kind_;
  TextBlock block_;
  ByteSink& file_;
  std::vector<std::uint8_t> types_;
  std::vector<std::string_view> appended_;
  std::size_t offset_ = 0;
};

}  // namespace

void writeVtkXml(const VtkOutput& output, VtkKind kind, ByteSink& file) {
  VtkXmlWriter(output, kind, file).run();
}

void writeVtkMesh(const Mesh& mesh, std::span<const VtkColumn> pointData,
                  std::span<const VtkColumn> cellData, bool isGrid, ByteSink& file,
                  const std::string& comment) {
  std::vector<int> ends;
  ends.reserve(asIndex(mesh.triangleCount()));
  for (int t = 1; t <= mesh.triangleCount(); ++t) ends.push_back(3 * t);
  writeVtkXml({mesh.vertices, mesh.triangles, ends, pointData, cellData, comment},
              isGrid ? VtkKind::kTriangles : VtkKind::kPolygons, file);
}

}  // namespace qelm::tool
