// Symmetric matrices of every shape.
#ifndef QELM_TESTS_FACTOR_MATRICES_H
#define QELM_TESTS_FACTOR_MATRICES_H

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

#include "factor/solver.h"
#include "support/random.h"

namespace qelm::test {

using factor::Sparse;

/// Pairs (i, j), i < j, each once.
using Edges = std::vector<std::pair<int, int>>;

/// Both triangles, rows ascending; the values come from the two functions, called for each edge
/// and each row in turn.
Sparse symmetricMatrix(int n, const Edges& edges, const std::function<double()>& offDiagonal,
                       const std::function<double(int)>& diagonal);

/// Random off-diagonal entries between -1 and 0, and a diagonal that makes up for them and more.
Sparse diagonallyDominant(int n, const Edges& edges, Random& random);

/// Any two vertices joined with the same probability.
Edges randomGraph(int n, double probability, Random& random);
/// Triangulated rows and columns.
Edges gridGraph(int columns, int rows);
/// The edges' ends renumbered at random.
Edges shuffled(int n, Edges edges, Random& random);

/// What differenceFromEigen() says.
testing::AssertionResult everyKernelGivesEigensBits(const Sparse& matrix);

}  // namespace qelm::test

#endif  // QELM_TESTS_FACTOR_MATRICES_H
