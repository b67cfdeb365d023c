// The heat map in its plainest form: streams, one manipulator for each line.
#ifndef QELM_TESTS_EXPORT_PLAIN_HEAT_MAP_H
#define QELM_TESTS_EXPORT_PLAIN_HEAT_MAP_H

#include <ostream>
#include <string>
#include <vector>

#include "interface/mesh_system.h"

namespace qelm::test {

void plainObj(std::ostream& out, const MeshSystem& system, const std::vector<double>& field,
              const std::string& path);
void plainMtl(std::ostream& out);

}  // namespace qelm::test

#endif  // QELM_TESTS_EXPORT_PLAIN_HEAT_MAP_H
