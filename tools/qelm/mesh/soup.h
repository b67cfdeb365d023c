// Triangle soups in formats that could share vertices and do not.
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

/// Recognises a soup: very many connected parts for its triangles, and most vertices at the place
/// of another one, or nearly. Of a billionth, a hundred-millionth and so on to a thousandth of the
/// diagonal, the tolerance is the smallest that merges as many vertices as any that costs no
/// triangles; up to one in a thousand may stay apart.
std::optional<Soup> findSoup(const Mesh& mesh);

}  // namespace qelm::tool

#endif
