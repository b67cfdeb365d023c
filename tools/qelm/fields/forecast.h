// How long construction will take, told before anybody waits for it.
#ifndef QELM_TOOLS_FORECAST_H
#define QELM_TOOLS_FORECAST_H

#include <qelm.h>

#include <optional>
#include <span>
#include <string>

#include "mesh/mesh.h"

namespace qelm::tool {

/// The library's prediction for a mesh that passes checkMesh(); nothing for a small one. Throws
/// InputError if the library cannot index the factor.
std::optional<QelmPrediction> forecast(const Mesh& mesh, std::span<const int> tags, bool robust);

/// The time of the factorisation on a processor of today, within a factor of three.
double secondsOf(const QelmPrediction& prediction);

/// "about 3 minutes: the factor has 120 M entries", if that is longer than ten seconds.
std::optional<std::string> describeWait(const QelmPrediction& prediction);

}  // namespace qelm::tool

#endif
