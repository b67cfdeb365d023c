// Symmetric matrices of any pattern and any values: the factorisation in blocks beside Eigen's.
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "factor/eigen_oracle.h"
#include "fuzz/input.h"
#include "support/random.h"

namespace {

using qelm::test::Sparse;

/// A dense symmetric matrix that knows which entries are stored.
class Entries {
 public:
  explicit Entries(int n) : n_(n), values_(count()), isStored_(count()) {}

  void put(int i, int j, double value) {
    for (const int k : {i * n_ + j, j * n_ + i}) {
      values_[static_cast<std::size_t>(k)] = value;
      isStored_[static_cast<std::size_t>(k)] = true;
    }
  }

  Sparse stored() const {
    std::vector<Eigen::Triplet<double>> triplets;
    for (std::size_t k = 0; k < count(); ++k) {
      const int entry = static_cast<int>(k);
      if (isStored_[k]) triplets.emplace_back(entry / n_, entry % n_, values_[k]);
    }
    Sparse matrix(n_, n_);
    matrix.setFromTriplets(triplets.begin(), triplets.end());
    return matrix;
  }

 private:
  std::size_t count() const { return static_cast<std::size_t>(n_) * static_cast<std::size_t>(n_); }

  int n_;
  std::vector<double> values_;
  std::vector<bool> isStored_;
};

/// A band and scattered entries, all of harmless values that few bytes decide about, so that most
/// matrices are factorised to their end; then single entries of any value, anywhere.
Sparse takeMatrix(qelm::fuzz::Input& input) {
  const int n = input.takeInt(1, 70);
  const int band = input.takeInt(0, 6);
  const int scattered = input.takeInt(0, 3 * n);
  qelm::test::Random random(input.take<std::uint16_t>());
  Entries entries(n);
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j <= i + band && j < n; ++j) {
      entries.put(i, j, qelm::test::uniform(random, -1, 1));
    }
  }
  for (int k = 0; k < scattered; ++k) {
    const int i = qelm::test::uniformInt(random, 0, n - 1);
    const int j = qelm::test::uniformInt(random, 0, n - 1);
    entries.put(i, j, qelm::test::uniform(random, -1, 1));
  }
  for (int i = 0; i < n; ++i) entries.put(i, i, qelm::test::uniform(random, 20, 40));
  while (!input.empty()) {
    const int i = input.takeInt(0, n - 1);
    const int j = input.takeInt(0, n - 1);
    entries.put(i, j, input.takeDouble());
  }
  return entries.stored();
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
