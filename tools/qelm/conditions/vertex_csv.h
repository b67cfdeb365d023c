// Values at vertices as CSV or NPY: loads, and values to prescribe.
#ifndef QELM_TOOLS_VERTEX_CSV_H
#define QELM_TOOLS_VERTEX_CSV_H

#include <string>
#include <string_view>
#include <vector>

namespace qelm::tool {

/// Reads one load per vertex from a CSV file, see the topic "loads" of the help for its forms.
/// `used` says of each vertex whether it is in some triangle; others may lack a value. A numpy
/// array has a load for each vertex. "-" is the standard input. Throws FileError that names the
/// file and the line.
std::vector<double> readLoad(const std::string& file, const std::vector<bool>& used);

struct FixedVertex {
  int vertex;
  double value;
  int tag;
};

/// Reads values to prescribe, see the topic "conditions" of the help; every vertex at most once, in
/// the file's order. A numpy array has a value for each vertex, NaN for a free one. "-" is the
/// standard input. Throws FileError that names the file and the line.
std::vector<FixedVertex> readFixes(const std::string& file, const std::vector<bool>& used);

/// The same for the text of a file that is called `name`.
std::vector<double> parseLoad(std::string_view text, const std::string& name,
                              const std::vector<bool>& used);
std::vector<FixedVertex> parseFixes(std::string_view text, const std::string& name,
                                    const std::vector<bool>& used);

}  // namespace qelm::tool

#endif
