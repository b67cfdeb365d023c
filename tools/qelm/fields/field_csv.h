// Fields as CSV: a header line, then one line per vertex.
#ifndef QELM_TOOLS_FIELD_CSV_H
#define QELM_TOOLS_FIELD_CSV_H

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "mesh/mesh.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// "value" of one field, "value1", "value2" and so on of several.
std::vector<std::string> fieldTitles(std::size_t fieldCount);

/// Writes "vertex,x,y,z" with the titles, and a line for each vertex, in the mesh's order, with
/// the shortest digits that read back as the same doubles; what is not a number is left empty.
/// `columns` come one after another, n values for each title.
void writeFieldCsv(const Mesh& mesh, const std::vector<std::string>& titles,
                   std::span<const double> columns, ByteSink& file);

}  // namespace qelm::tool

#endif
