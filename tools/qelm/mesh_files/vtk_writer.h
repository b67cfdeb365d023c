// Writes VTK's XML files. In: points, cells and numbers of each. Out: a .vtp or .vtu file.
#ifndef QELM_TOOLS_VTK_WRITER_H
#define QELM_TOOLS_VTK_WRITER_H

#include <span>
#include <string>

#include "mesh/mesh.h"
#include "text/byte_sink.h"

namespace qelm::tool {

struct VtkColumn {
  std::string name;
  std::span<const double> values;
  int components = 1;  ///< 3 of vectors, packed xyz
};

/// Points and the cells of one kind over them.
struct VtkOutput {
  std::span<const double> points;  ///< packed xyz
  std::span<const int> corners;    ///< of all cells, one after another
  std::span<const int> ends;       ///< where each cell's end
  std::span<const VtkColumn> pointData = {};
  std::span<const VtkColumn> cellData = {};
  std::string comment = {};  ///< at the file's begin, in one line
};

enum class VtkKind {
  kPolygons,  ///< PolyData, .vtp
  kLines,     ///< the same, of polylines
  kTriangles  ///< UnstructuredGrid of triangles, .vtu
};

/// Version 1.0, which VTK 6 and later read: bytes behind the tags, little-endian, every double
/// kept, not compressed.
void writeVtkXml(const VtkOutput& output, VtkKind kind, ByteSink& file);

/// A mesh as .vtp or, if `isGrid`, .vtu, with numbers of its vertices and of its triangles.
void writeVtkMesh(const Mesh& mesh, std::span<const VtkColumn> pointData,
                  std::span<const VtkColumn> cellData, bool isGrid, ByteSink& file,
                  const std::string& comment = "");

}  // namespace qelm::tool

#endif
