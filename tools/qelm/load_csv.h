// Loads as CSV.
#ifndef QELM_TOOLS_LOAD_CSV_H
#define QELM_TOOLS_LOAD_CSV_H

#include <string>
#include <vector>

namespace qelm::tool {

/// Shown in --help.
extern const char* const kLoadHelp;

/// Reads one load per vertex from a CSV file, see kLoadHelp for its forms.
/// Throws InputError that names the file and the line.
std::vector<double> readLoad(const std::string& name, int vertexCount);

}  // namespace qelm::tool

#endif
