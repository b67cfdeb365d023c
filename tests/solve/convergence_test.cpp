// Solved fields approach known harmonic fields as the mesh is refined, with the
// second order that linear elements have (Strang and Fix, 1973, ch. 3).
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "support/analytic.h"
#include "support/handle.h"

namespace qelm::test {
namespace {

// The error is C h^2 + o(h^2); at these sizes the order is measured within this.
constexpr double kOrderSlack = 0.15;

TEST(Convergence, IsOfSecondOrderOnEveryAnalyticSurface) {
  std::vector<double> errors(analyticCases(4).size());
  for (int resolution = 8; resolution <= 64; resolution *= 2) {
    const std::vector<AnalyticCase> cases = analyticCases(resolution);
    for (std::size_t k = 0; k < cases.size(); ++k) {
      const AnalyticCase& c = cases[k];
      const double error = largestError(solve(construct(c.mesh), c.exact), c.exact);
      if (resolution > 8) {
        EXPECT_NEAR(std::log2(errors[k] / error), 2.0, kOrderSlack) << c.name << ' ' << resolution;
      }
      errors[k] = error;
    }
  }
}

}  // namespace
}  // namespace qelm::test
