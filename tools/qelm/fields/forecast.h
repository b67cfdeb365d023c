// What constructing a system will take, told before anybody waits for it.
#ifndef QELM_TOOLS_FORECAST_H
#define QELM_TOOLS_FORECAST_H

#include <qelm.h>

#include <optional>
#include <span>
#include <string>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Of a mesh that passes checkMesh(); nothing of a small one. Throws InputError if the library
/// cannot index the factor.
std::optional<QelmPrediction> forecast(const Mesh& mesh, std::span<const int> tags, bool robust);

/// On a processor of today; within a factor of three.
double secondsOf(const QelmPrediction& prediction);

/// "about 3 minutes: the factor has 120 M entries", if that is longer than ten seconds.
std::optional<std::string> describeWait(const QelmPrediction& prediction);

}  // namespace qelm::tool

#endif
