// Isolines in their plainest form: three dense tables of edge positions, one row
// for each triangle row and one column for each level. The library must give the
// same bits. Slow, and large.
#ifndef QELM_TESTS_ISOLINES_PLAIN_ISOLINES_H
#define QELM_TESTS_ISOLINES_PLAIN_ISOLINES_H

#include <cstdint>
#include <vector>

#include "interface/mesh_system.h"

namespace qelm::test {

struct PlainIsolines {
  std::vector<double> points;       ///< 2s x 3, column by column
  std::vector<std::int32_t> edges;  ///< s x 2, column by column
};

PlainIsolines plainIsolines(const MeshSystem& system, const std::vector<double>& field,
                            const std::vector<double>& levels);

}  // namespace qelm::test

#endif  // QELM_TESTS_ISOLINES_PLAIN_ISOLINES_H
