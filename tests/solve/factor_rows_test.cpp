// Every set of instructions of this processor and every width, beside one loop over the columns for
// each right-hand side: the same bits.
#include "solve/factor_rows.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "factor/matrices.h"
#include "factor/solver.h"
#include "solve/column_loop.h"
#include "support/random.h"

namespace qelm::test {
namespace {

using Fields = std::vector<std::vector<double>>;

/// Zeros of both signs among the entries, with the given probability: some rows are zero in all
/// right-hand sides, some in none, some in a few.
Fields rightHandSides(int count, Eigen::Index n, double zeros, Random& random) {
  Fields fields(static_cast<std::size_t>(count));
  for (auto& field : fields) {
    for (Eigen::Index i = 0; i < n; ++i) {
      const bool isZero = i % 3 != 0 && uniform(random, 0, 1) < zeros;
      const double zero = uniform(random, 0, 1) < 0.5 ? 0.0 : -0.0;
      field.push_back(isZero ? zero : uniform(random, -2, 3));
    }
  }
  return fields;
}

std::vector<double> sideBySide(const Fields& fields) {
  std::vector<double> rows;
  for (std::size_t i = 0; i < fields.front().size(); ++i) {
    for (const auto& field : fields) rows.push_back(field[i]);
  }
  return rows;
}

template <int Width>
void expectTheBitsOfSingleLoops(const SparseBlock& lower, const Eigen::VectorXd& diagonal,
                                const Fields& start) {
  for (const RowSubstitution& substitution : rowSubstitutions<Width>()) {
    SCOPED_TRACE(testing::Message() << substitution.name << ", width " << Width);
    Fields expected = start;
    std::vector<double> actual = sideBySide(start);
    substitution.forward(lower, actual.data());
    for (auto& field : expected) substituteForwardByColumns(lower, field);
    ASSERT_TRUE(sameBitsOrBothNan(actual, sideBySide(expected))) << "down";
    substitution.back(lower, diagonal, actual.data());
    for (auto& field : expected) substituteBackByColumns(lower, diagonal, field);
    ASSERT_TRUE(sameBitsOrBothNan(actual, sideBySide(expected))) << "up";
  }
}

template <int... Width>
void expectTheBitsOfSingleLoopsInEveryWidth(const SparseBlock& lower,
                                            const Eigen::VectorXd& diagonal, double zeros,
                                            Random& random) {
  (expectTheBitsOfSingleLoops<Width>(lower, diagonal,
                                     rightHandSides(Width, lower.cols(), zeros, random)),
   ...);
}

void expectInAllWidths(const SparseBlock& lower, const Eigen::VectorXd& diagonal, double zeros,
                       Random& random) {
  expectTheBitsOfSingleLoopsInEveryWidth<2, 4, 8, 16, 32>(lower, diagonal, zeros, random);
}

TEST(FactorRows, AreThereForEveryProcessor) {
  ASSERT_FALSE(rowSubstitutions<8>().empty());
  EXPECT_STREQ(rowSubstitutions<8>().back().name, "baseline");
}

TEST(FactorRows, HaveTheBitsOfALoopOverColumns) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed());
  for (const int n : {1, 2, 5, 60, 400}) {
    const auto graph = n == 400 ? gridGraph(20, 20) : randomGraph(n, 0.3, random);
    const factor::Solver solver(diagonallyDominant(n, graph, random));
    for (const double zeros : {0.0, 0.1, 0.9, 1.0}) {
      expectInAllWidths(solver.matrixL().nestedExpression(), solver.vectorD(), zeros, random);
    }
  }
}

TEST(FactorRows, PassOverColumnsOfZerosEvenWhereLIsNotFinite) {
  Random random(3);
  const factor::Solver solver(diagonallyDominant(30, randomGraph(30, 1, random), random));
  Sparse lower = solver.matrixL().nestedExpression();
  lower.valuePtr()[3] = std::numeric_limits<double>::infinity();
  lower.valuePtr()[40] = std::numeric_limits<double>::quiet_NaN();
  expectInAllWidths(lower, solver.vectorD(), 0.5, random);
}

TEST(FactorRows, TakeAFactorWithoutColumns) {
  const SparseBlock lower(0, 0);
  for (const RowSubstitution& substitution : rowSubstitutions<4>()) {
    substitution.forward(lower, nullptr);
    substitution.back(lower, {}, nullptr);
  }
  EXPECT_EQ(lower.cols(), 0);
}

}  // namespace
}  // namespace qelm::test
