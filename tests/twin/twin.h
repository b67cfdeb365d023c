// The library a second time, as plainly as its interface can be put into code: every pair
// of points, every entry of a matrix in a map, every position in a table, streams for text.
// Nothing here includes or repeats a line of the library; sums and products stand in the
// order that is part of the contract.
#ifndef QELM_TESTS_TWIN_TWIN_H
#define QELM_TESTS_TWIN_TWIN_H

#include <Eigen/SparseCholesky>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace qelm::test::twin {

using Doubles = std::vector<double>;
using Ints = std::vector<int>;

struct Welded {
  Doubles vertices;
  Ints triangles;
  Ints map;
};
Welded weld(const Doubles& vertices, const Ints& triangles, double tolerance);

/// What a handle stands for. All but `status` and `taggedCount` mean nothing unless the
/// status is 0.
struct System {
  int status = 0;
  int taggedCount = 0;
  Ints order;  ///< from the system's vertices to the caller's
  Doubles vertices;
  Ints triangles;
  std::map<std::pair<int, int>, double> k;  ///< by column and row
  Eigen::SimplicialLDLT<Eigen::SparseMatrix<double>, Eigen::Lower, Eigen::AMDOrdering<int>> factor;
};
/// At least one vertex and one triangle.
void construct(const Doubles& vertices, const Ints& triangles, const Ints& tags, System& system);

/// Without a load if it is empty.
Doubles solve(const System& system, const Doubles& values, const Doubles& load);

struct Segments {
  Doubles points;
  Ints edges;
};
Segments isolines(const System& system, const Doubles& field, const Doubles& levels);

/// The text of the OBJ file.
std::string heatMap(const System& system, const Doubles& field, const std::string& path);

}  // namespace qelm::test::twin

#endif  // QELM_TESTS_TWIN_TWIN_H
