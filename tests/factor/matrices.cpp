#include "factor/matrices.h"

#include <string>

#include "factor/eigen_oracle.h"

namespace qelm::test {
Sparse symmetricMatrix(int n, const Edges& edges, const std::function<double()>& offDiagonal,
                       const std::function<double(int)>& diagonal) {
  std::vector<Eigen::Triplet<double>> entries;
  for (const auto& [i, j] : edges) {
    const double value = offDiagonal();
    entries.emplace_back(i, j, value);
    entries.emplace_back(j, i, value);
  }
  for (int i = 0; i < n; ++i) entries.emplace_back(i, i, diagonal(i));
  Sparse matrix(n, n);
  matrix.setFromTriplets(entries.begin(), entries.end());
  return matrix;
}

Sparse diagonallyDominant(int n, const Edges& edges, Random& random) {
  std::vector<double> sums(static_cast<std::size_t>(n), 0.0);
  std::size_t next = 0;
  return symmetricMatrix(
      n, edges,
      [&] {
        const double value = -uniform(random, 0.01, 1);
        const auto& [i, j] = edges[next++];
        sums[static_cast<std::size_t>(i)] -= value;
        sums[static_cast<std::size_t>(j)] -= value;
        return value;
      },
      [&](int i) { return sums[static_cast<std::size_t>(i)] + uniform(random, 0.001, 0.1); });
}

Edges randomGraph(int n, double probability, Random& random) {
  Edges edges;
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < j; ++i) {
      if (uniform(random, 0, 1) < probability) edges.emplace_back(i, j);
    }
  }
  return edges;
}

Edges gridGraph(int columns, int rows) {
  Edges edges;
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < columns; ++x) {
      const int i = y * columns + x;
      if (x + 1 < columns) edges.emplace_back(i, i + 1);
      if (y + 1 < rows) edges.emplace_back(i, i + columns);
      if (x + 1 < columns && y + 1 < rows) edges.emplace_back(i, i + columns + 1);
    }
  }
  return edges;
}

Edges shuffled(int n, Edges edges, Random& random) {
  const auto newIndex = permutation(random, n);
  for (auto& [i, j] : edges) {
    i = newIndex[static_cast<std::size_t>(i)];
    j = newIndex[static_cast<std::size_t>(j)];
    if (i > j) std::swap(i, j);
  }
  return edges;
}

testing::AssertionResult everyKernelGivesEigensBits(const Sparse& matrix) {
  const std::string found = differenceFromEigen(matrix);
  if (found.empty()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << found;
}

}  // namespace qelm::test
