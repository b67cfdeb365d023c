// Triangle soups in formats that could share vertices and do not.
//
// A soup has very many connected parts for its triangles, and welding it leaves at most three
// quarters of its vertices. The tolerance comes from the data: welding is tried within a billionth
// of the diagonal, ten times as much, and so on to a thousandth, until it costs triangles; the
// smallest tolerance is taken that merges as many vertices as the largest, up to one in a thousand.
// Takes seven weldings at most, and only of a mesh with so many parts.
#ifndef QELM_TOOLS_SOUP_H
#define QELM_TOOLS_SOUP_H

#include <cstddef>
#include <optional>

#include "mesh/mesh.h"

namespace qelm::tool {

struct Soup {
  std::size_t parts;  ///< connected parts
  int merged;         ///< vertices that welding would merge with another
  double tolerance;   ///< for welding, from the data
};

/// Nothing if the mesh is no soup.
std::optional<Soup> findSoup(const Mesh& mesh);

}  // namespace qelm::tool

#endif
