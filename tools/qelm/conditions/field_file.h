// --field FILE[:COLUMN]: a number for each vertex, from elsewhere.
#ifndef QELM_TOOLS_FIELD_FILE_H
#define QELM_TOOLS_FIELD_FILE_H

#include <string>
#include <string_view>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

struct FieldSource {
  std::string file;
  std::string column;  ///< by name, or by number from 0; empty: "value", or the only one
};

/// "FILE:COLUMN", with "-" for the standard input, or all of it a file if there is one of that
/// name.
FieldSource parseFieldSource(const std::string& text);

/// Reads NPY (one axis, or a column of two), PLY (a property of its vertices, which are as many as
/// the mesh's) or, by any other name, CSV: a line for each vertex in order, or in any order with a
/// column "vertex"; a header line names the columns. Throws FileError that names the file, and the
/// line or vertex where there is one, also for a value that is not finite
/// at a vertex that is `used`; others get NaN.
std::vector<double> readField(const FieldSource& source, const std::vector<bool>& used);

/// The same from a file's bytes.
std::vector<double> parseField(const FieldSource& source, std::string_view bytes,
                               const std::vector<bool>& used);

}  // namespace qelm::tool

#endif
