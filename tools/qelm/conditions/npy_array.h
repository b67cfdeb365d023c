// Arrays of numbers as numpy saves them.
#ifndef QELM_TOOLS_NPY_ARRAY_H
#define QELM_TOOLS_NPY_ARRAY_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "text/byte_sink.h"

namespace qelm::tool {

struct NpyArray {
  std::size_t rows = 0;
  std::size_t columns = 1;     ///< 1 of an array with one axis
  std::vector<double> values;  ///< rows * columns, row after row

  double at(std::size_t row, std::size_t column) const { return values[row * columns + column]; }
};

/// Whether a file is one, by how it begins: no text does so.
bool isNpy(std::string_view bytes);

/// Arrays with one or two axes of numbers or truth values of up to 64 bits, of either byte order
/// and either order of axes, format 1 to 3. Whole numbers above 2^53 are rounded. Throws FileError.
NpyArray parseNpy(std::string_view bytes, const std::string& name);

/// Format 1, little-endian doubles: (n,) of one column, else (n, c). `columns` come one after
/// another, each with n values.
void writeNpy(std::span<const double> columns, std::size_t n, ByteSink& file);

}  // namespace qelm::tool

#endif
