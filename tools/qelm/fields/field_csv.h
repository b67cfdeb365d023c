// Fields as CSV: a header line, then one line per vertex.
#ifndef QELM_TOOLS_FIELD_CSV_H
#define QELM_TOOLS_FIELD_CSV_H

#include <span>

#include "mesh/mesh.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// Writes "vertex,x,y,z,value" and a line for each vertex, in the mesh's order, with
/// the shortest digits that read back as the same doubles; what is not a number is left empty.
/// Several fields, given one
/// after another, go to columns "value1", "value2" and so on.
void writeFieldCsv(const Mesh& mesh, std::span<const double> fields, ByteSink& file);

}  // namespace qelm::tool

#endif
