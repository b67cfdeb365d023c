// The header of a PLY file. In: the file's bytes. Out: which elements and properties follow, and in
// which form.
#ifndef QELM_TOOLS_PLY_HEADER_H
#define QELM_TOOLS_PLY_HEADER_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qelm::tool {

enum class PlyType { kInt8, kUint8, kInt16, kUint16, kInt32, kUint32, kFloat32, kFloat64 };

std::size_t sizeOf(PlyType type);
bool isWhole(PlyType type);

struct PlyProperty {
  std::string_view name;
  PlyType type;                      ///< of a list: of its items
  std::optional<PlyType> countType;  ///< of a list
};

struct PlyElement {
  std::string_view name;
  std::size_t count;
  std::size_t line;  ///< of the file, for messages
  std::vector<PlyProperty> properties;
};

enum class PlyFormat { kText, kLittleEndian, kBigEndian };

struct PlyHeader {
  PlyFormat format = PlyFormat::kText;
  std::vector<PlyElement> elements;
  std::string_view body;  ///< what follows the header
  std::size_t lines = 0;  ///< of the header
};

inline bool isVertexElement(std::string_view name) {
  return name == "vertex" || name == "vertices";
}
inline bool isFaceElement(std::string_view name) { return name == "face" || name == "faces"; }
inline bool isCornerList(const PlyProperty& property) {
  return property.countType &&
         (property.name == "vertex_indices" || property.name == "vertex_index");
}

/// Views into `bytes`. Throws FileError with the line of whatever keeps the header
/// from announcing vertices with x, y, z and faces with a list of vertex indices, or
/// when the file is too short for what is announced.
PlyHeader readPlyHeader(std::string_view bytes, const std::string& name);

}  // namespace qelm::tool

#endif
