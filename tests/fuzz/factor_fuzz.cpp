// Symmetric matrices of any pattern and any values: the factorisation in blocks beside Eigen's.
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "factor/eigen_oracle.h"
#include "fuzz/input.h"

namespace {

using qelm::test::Sparse;

/// A band, mostly of one, some more entries anywhere, and a diagonal that is mostly large.
Sparse takeMatrix(qelm::fuzz::Input& input) {
  const int n = input.takeInt(1, 70);
  const int band = input.takeInt(0, 6);
  const int more = input.takeInt(0, 3 * n);
  std::vector<std::vector<double>> entries(static_cast<std::size_t>(n),
                                           std::vector<double>(static_cast<std::size_t>(n)));
  std::vector<std::vector<bool>> isThere(static_cast<std::size_t>(n),
                                         std::vector<bool>(static_cast<std::size_t>(n)));
  const auto put = [&](int i, int j, double value) {
    for (const auto& [row, column] : {std::pair{i, j}, std::pair{j, i}}) {
      entries[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = value;
      isThere[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = true;
    }
  };
  for (int i = 0; i < n; ++i) {
    put(i, i, input.takeDouble() + (input.takeInt(0, 15) == 0 ? 0.0 : 20.0));
    for (int j = i + 1; j <= i + band && j < n; ++j) put(i, j, input.takeDouble());
  }
  for (int k = 0; k < more; ++k) {
    const int i = input.takeInt(0, n - 1);
    const int j = input.takeInt(0, n - 1);
    if (i != j) put(i, j, input.takeDouble());
  }
  std::vector<Eigen::Triplet<double>> triplets;
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      if (isThere[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)]) {
        triplets.emplace_back(i, j,
                              entries[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)]);
      }
    }
  }
  Sparse matrix(n, n);
  matrix.setFromTriplets(triplets.begin(), triplets.end());
  return matrix;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::fuzz::Input input(data, size);
  const std::string found = qelm::test::differenceFromEigen(takeMatrix(input));
  if (!found.empty()) {
    std::cerr << found << "\n";
    std::abort();
  }
  return 0;
}
