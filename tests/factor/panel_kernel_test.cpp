// Every set of instructions of this processor beside the loops that they stand for.
#include "factor/panel_kernel.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "support/compare.h"
#include "support/random.h"

namespace qelm::test {
namespace {

using factor::kBlock;
using factor::PanelKernel;
using factor::RowPair;

std::vector<double> randomNumbers(Random& random, std::size_t count) {
  std::vector<double> numbers(count);
  for (double& x : numbers) x = uniform(random, -2, 2);
  return numbers;
}

/// Rows at odd distances, in no order, behind one another in `values`.
std::vector<double*> scatteredRows(std::vector<double>& values, std::size_t count,
                                   std::size_t length, Random& random) {
  std::vector<double*> rows;
  for (const auto k : permutation(random, static_cast<int>(count))) {
    rows.push_back(values.data() + static_cast<std::size_t>(k) * (length + 3) + 1);
  }
  return rows;
}

TEST(PanelKernel, IsThereForEveryProcessor) {
  ASSERT_FALSE(factor::panelKernels().empty());
  EXPECT_STREQ(factor::panelKernels().back().name, "baseline");
}

TEST(PanelKernel, UpdatesRowsOneRoundedStepAtATime) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed());
  for (const PanelKernel& kernel : factor::panelKernels()) {
    SCOPED_TRACE(kernel.name);
    for (int depth = 0; depth < 40; ++depth) {
      const std::size_t count = kernel.rowGroup * static_cast<std::size_t>(depth % 5);
      const auto length = static_cast<std::size_t>(std::max(depth, kBlock));
      const auto columns = randomNumbers(random, static_cast<std::size_t>(depth * kBlock));
      auto sources = randomNumbers(random, count * (length + 3) + 1);
      auto targets = randomNumbers(random, count * (length + 3) + 1);
      auto expected = targets;
      const auto sourceRows = scatteredRows(sources, count, length, random);
      const auto targetRows = scatteredRows(targets, count, length, random);
      std::vector<RowPair> rows;
      for (std::size_t r = 0; r < count; ++r) {
        rows.push_back({sourceRows[r], targetRows[r]});
        double* const row = expected.data() + (targetRows[r] - targets.data());
        for (int k = 0; k < depth; ++k) {
          for (int c = 0; c < kBlock; ++c) {
            const double product =
                columns[static_cast<std::size_t>(k * kBlock + c)] * sourceRows[r][k];
            row[c] -= product;
          }
        }
      }
      kernel.update(rows, columns.data(), depth);
      ASSERT_TRUE(sameBits(targets, expected)) << "depth " << depth;
    }
  }
}

TEST(PanelKernel, SubstitutesForwardWithinABlock) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed());
  for (const PanelKernel& kernel : factor::panelKernels()) {
    SCOPED_TRACE(kernel.name);
    for (std::size_t groups = 0; groups < 5; ++groups) {
      const std::size_t count = groups * kernel.rowGroup;
      auto columns = randomNumbers(random, kBlock * kBlock);
      for (int k = 0; k < kBlock; ++k) {
        for (int c = 0; c <= k; ++c) columns[static_cast<std::size_t>(k * kBlock + c)] = 0;
      }
      auto targets = randomNumbers(random, count * (kBlock + 3) + 1);
      auto expected = targets;
      std::vector<RowPair> rows;
      for (double* const row : scatteredRows(targets, count, kBlock, random)) {
        rows.push_back({nullptr, row});
        double* const other = expected.data() + (row - targets.data());
        for (int c = 0; c < kBlock; ++c) {
          for (int k = 0; k < c; ++k) {
            const double product = columns[static_cast<std::size_t>(k * kBlock + c)] * other[k];
            other[c] -= product;
          }
        }
      }
      kernel.substitute(rows, columns.data());
      ASSERT_TRUE(sameBits(targets, expected)) << count << " rows";
    }
  }
}

TEST(PanelKernel, ReadsAndWritesOneRowWhereItsPartsDoNotOverlap) {
  Random random(5);
  for (const PanelKernel& kernel : factor::panelKernels()) {
    SCOPED_TRACE(kernel.name);
    const auto columns = randomNumbers(random, kBlock * kBlock);
    auto row = randomNumbers(random, 2 * kBlock);
    auto expected = row;
    for (int k = 0; k < kBlock; ++k) {
      for (int c = 0; c < kBlock; ++c) {
        const double product = columns[static_cast<std::size_t>(k * kBlock + c)] *
                               expected[static_cast<std::size_t>(k)];
        expected[static_cast<std::size_t>(kBlock + c)] -= product;
      }
    }
    std::array<double, kBlock> unread{};
    std::vector<RowPair> rows(kernel.rowGroup, {row.data(), unread.data()});
    rows[0].target = row.data() + kBlock;
    kernel.update(rows, columns.data(), kBlock);
    EXPECT_TRUE(sameBits(row, expected));
  }
}

}  // namespace
}  // namespace qelm::test
