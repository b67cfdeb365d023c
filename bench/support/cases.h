// The surfaces that every stage is measured on.
#ifndef QELM_BENCH_SUPPORT_CASES_H
#define QELM_BENCH_SUPPORT_CASES_H

#include <memory>
#include <string>
#include <vector>

#include "interface/mesh_system.h"
#include "support/meshes.h"

namespace qelm::bench {

enum class Surface {
  kGrid,    ///< flat, open, boundary tagged
  kSphere,  ///< a cube's six grids projected, two caps tagged
  kNoisy    ///< a torus whose vertices are moved at random, two ends tagged
};

/// A surface of about so many vertices, numbered along its rows or in a random order.
struct Case {
  Surface surface;
  bool shuffled;
  int size;
};

/// "grid/natural/10000".
std::string nameOf(const Case& c);

/// All that a program can measure: a thousand to 3 million vertices.
std::vector<Case> allCases();

test::Mesh makeMesh(const Case& c);

/// Waves over the whole surface.
test::Field waves(const test::Mesh& mesh);

/// `count` levels spread over the values of a field, none at an end.
std::vector<double> spreadLevels(const test::Field& field, int count);

struct FreeSystem {
  void operator()(MeshSystem* system) const;
};
using SystemHandle = std::unique_ptr<MeshSystem, FreeSystem>;

SystemHandle construct(const test::Mesh& mesh);

}  // namespace qelm::bench

#endif  // QELM_BENCH_SUPPORT_CASES_H
