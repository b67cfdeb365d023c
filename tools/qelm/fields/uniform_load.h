// --load uniform=Q: the same load everywhere on the surface.
#ifndef QELM_TOOLS_UNIFORM_LOAD_H
#define QELM_TOOLS_UNIFORM_LOAD_H

#include <optional>
#include <string>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

/// The load per area of "uniform=Q"; none for anything else, which is a file. Throws UsageError
/// when Q is not a finite number.
std::optional<double> parseUniformLoad(const std::string& text);

/// Every triangle's load, `perArea` times its area, in thirds at its corners: exact for the linear
/// functions of the finite elements.
std::vector<double> uniformLoad(const Mesh& mesh, double perArea);

}  // namespace qelm::tool

#endif
