// Gradients as columns: CSV, NPY, PLY, VTK.
#ifndef QELM_TOOLS_GRADIENT_FILES_H
#define QELM_TOOLS_GRADIENT_FILES_H

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "fields/gradient.h"
#include "mesh/mesh.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// Columns by their titles, one after another, n values each.
struct FieldColumns {
  std::vector<std::string> titles;
  std::vector<double> values;
};

/// After the fields the gradient of each at the vertices: gx, gy, gz and slope, which is the
/// gradient's length; gx1 and so on of several fields.
FieldColumns withGradients(std::span<const double> fields, std::span<const Gradient> gradients);

/// "triangle,x,y,z,gx,gy,gz,slope" with the triangle's centre; empty where it has no gradient.
void writeTriangleCsv(const Mesh& mesh, const Gradient& gradient, ByteSink& file);

/// A packed array of vectors as (count, 3).
void writeVectorsNpy(std::span<const double> vectors, ByteSink& file);

/// Binary: the value of every vertex, and gx, gy, gz and slope of every vertex or of every face.
/// (Some readers cannot take a face's properties.)
void writeGradientPly(const Mesh& mesh, std::span<const double> field, const Gradient& gradient,
                      bool isPerVertex, ByteSink& file);

/// .vtp or, if `isGrid`, .vtu: the fields as point data "value" and, unless there are no gradients,
/// of each field "gradient" and "slope" as point data and as cell data; value1, gradient1 and so on
/// of several fields, which come one after another.
void writeFieldsVtk(const Mesh& mesh, std::span<const double> fields, std::size_t fieldCount,
                    std::span<const Gradient> gradients, bool isGrid, ByteSink& file);

}  // namespace qelm::tool

#endif
