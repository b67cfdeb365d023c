// The checked solve: the bits of the plain one, and the place of the first number that is wrong.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "interface/mesh_system.h"
#include "qelm.h"
#include "robust/robust_of.h"
#include "solve/batch_solve.h"
#include "support/compare.h"
#include "support/handle.h"
#include "support/meshes.h"
#include "support/random.h"

namespace qelm::test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kUntouched = -777.0;

Field randomFields(const Mesh& mesh, int count, std::uint64_t seed) {
  Random random(seed);
  Field fields(static_cast<std::size_t>(mesh.vertexCount() * count));
  for (double& v : fields) v = uniform(random, -3, 5);
  return fields;
}

struct Outcome {
  int status = Construction::kUnwritten;
  std::int64_t first = -777;
  Field results;
};

Outcome checked(const MeshHandle& system, const Field& values, const Field& loads = {}) {
  Outcome outcome;
  outcome.results.assign(values.size(), kUntouched);
  const int count = static_cast<int>(values.size() / static_cast<std::size_t>(system->vertexCount));
  qelmsolveCheckedTagged(system.get(), count, values.data(), loads.empty() ? nullptr : loads.data(),
                         outcome.results.data(), &outcome.first, &outcome.status);
  return outcome;
}

Field unchecked(const MeshHandle& system, const Field& values, const Field& loads = {}) {
  Field results(values.size(), kUntouched);
  const int count = static_cast<int>(values.size() / static_cast<std::size_t>(system->vertexCount));
  int status = Construction::kUnwritten;
  qelmsolveManyTagged(system.get(), count, values.data(), loads.empty() ? nullptr : loads.data(),
                      results.data(), &status);
  EXPECT_EQ(status, QELM_STATUS_OK);
  return results;
}

void expectRefusal(const Outcome& outcome, int status, std::size_t first) {
  EXPECT_EQ(outcome.status, status);
  EXPECT_EQ(outcome.first, static_cast<std::int64_t>(first));
  EXPECT_EQ(outcome.results, Field(outcome.results.size(), kUntouched));
}

/// Vertices of a tag that is, or is not, 0, ascending.
std::vector<std::size_t> vertices(const Mesh& mesh, bool free) {
  std::vector<std::size_t> found;
  for (std::size_t v = 0; v < mesh.tags.size(); ++v) {
    if ((mesh.tags[v] == 0) == free) found.push_back(v);
  }
  return found;
}

TEST(CheckedSolve, HasTheBitsOfTheUncheckedOne) {
  for (const Mesh& mesh :
       {openSurface(14, 13, 3).withBoundaryTagged(), torusMesh(14, 8).withTagged({0, 50, 70}, 3),
        gridMesh(5, 5).withEveryVertexTagged()}) {
    const MeshHandle system = construct(mesh);
    for (const int count : {1, 2, 7, kBatchWidth, 2 * kBatchWidth + 3}) {
      const Field values = randomFields(mesh, count, 1);
      for (const Field& loads : {Field(), randomFields(mesh, count, 2)}) {
        const Outcome outcome = checked(system, values, loads);
        EXPECT_EQ(outcome.status, QELM_STATUS_OK);
        EXPECT_EQ(outcome.first, -1);
        EXPECT_TRUE(sameBits(outcome.results, unchecked(system, values, loads))) << count;
      }
    }
  }
}

TEST(CheckedSolve, MayTakeOneArrayForSeveral) {
  const Mesh mesh = openSurface(11, 10, 4).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  Field all = randomFields(mesh, 3, 5);
  const Field expected = unchecked(system, all, all);
  int status = Construction::kUnwritten;
  qelmsolveCheckedTagged(system.get(), 3, all.data(), all.data(), all.data(), nullptr, &status);
  EXPECT_EQ(status, QELM_STATUS_OK);
  EXPECT_TRUE(sameBits(all, expected));
}

TEST(CheckedSolve, PassesOverNumbersThatAreNotRead) {
  const Mesh mesh = openSurface(10, 9, 1).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  Field values = randomFields(mesh, 5, 7);
  Field loads = randomFields(mesh, 5, 8);
  const Field expected = unchecked(system, values, loads);
  for (std::size_t i = 0; i < values.size(); ++i) {
    (mesh.tags[i % mesh.tags.size()] == 0 ? values : loads)[i] = i % 2 == 0 ? kNaN : kInf;
  }
  const Outcome outcome = checked(system, values, loads);
  EXPECT_EQ(outcome.status, QELM_STATUS_OK);
  EXPECT_TRUE(sameBits(outcome.results, expected));
}

// Of a field in a later block as well: nothing is written before everything was looked at.
TEST(CheckedSolve, NamesTheFirstValueOrLoadAndLeavesTheResultsAlone) {
  const Mesh mesh = openSurface(9, 8, 2).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const std::size_t n = mesh.tags.size();
  const std::vector<std::size_t> fixed = vertices(mesh, false);
  const std::vector<std::size_t> free = vertices(mesh, true);
  const int count = 2 * kBatchWidth + 3;
  for (const double wrong : {kNaN, kInf, -kInf}) {
    for (const int index : {0, 1, kBatchWidth, count - 1}) {
      const auto field = static_cast<std::size_t>(index);
      Field values = randomFields(mesh, count, 3);
      Field loads = randomFields(mesh, count, 4);
      for (const std::size_t k : {std::size_t{2}, free.size() - 1})
        loads[field * n + free[k]] = wrong;
      expectRefusal(checked(system, values, loads), QELM_STATUS_LOAD_NOT_FINITE,
                    field * n + free[2]);
      for (const std::size_t k : {std::size_t{3}, fixed.size() - 1})
        values[field * n + fixed[k]] = wrong;
      expectRefusal(checked(system, values, loads), QELM_STATUS_VALUE_NOT_FINITE,
                    field * n + fixed[3]);
    }
  }
}

TEST(CheckedSolve, NamesTheFirstPlaceWhereAFieldIsNotFinite) {
  const Mesh mesh = openSurface(9, 8, 2).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const std::size_t n = mesh.tags.size();
  for (int count = 1; count <= 2 * kBatchWidth + 3; ++count) {
    const auto last = static_cast<std::size_t>(count) - 1;
    for (const std::size_t field : {std::size_t{0}, last / 2, last}) {
      Field values = randomFields(mesh, count, 5);
      for (std::size_t v = 0; v < n; ++v) values[field * n + v] = 1.7e308;
      const Field expected = unchecked(system, values);
      std::size_t first = 0;
      while (first < expected.size() && std::isfinite(expected[first])) ++first;
      ASSERT_EQ(first / n, field) << "such values overflow";
      const Outcome outcome = checked(system, values);
      EXPECT_EQ(outcome.status, QELM_STATUS_FIELD_NOT_FINITE);
      EXPECT_EQ(outcome.first, static_cast<std::int64_t>(first)) << count << " fields";
    }
  }
}

TEST(CheckedSolve, AfterAFailedFactorisationIsRefused) {
  const MeshHandle system = construct(twoPartsOneTagged());
  ASSERT_EQ(qelminfo(system.get()), 1);
  const Outcome outcome = checked(system, Field(6, kNaN));
  EXPECT_EQ(outcome.status, QELM_STATUS_NOT_FACTORISED) << "is looked at before the values";
  EXPECT_EQ(outcome.first, -1);
  EXPECT_EQ(outcome.results, Field(6, kUntouched));
}

TEST(CheckedSolve, KeepsTheRangeOfARobustSystem) {
  const Mesh mesh = sliverStrip(30, 1e-4).withTagged({0, 1, 61});
  const MeshHandle system = constructRobust(mesh);
  const Field values = randomFields(mesh, 3, 6);
  EXPECT_TRUE(sameBits(checked(system, values).results, unchecked(system, values)));
}

TEST(CheckedSolveStatus, IsThatOfTheFirstThingWrongAndLeavesTheResultsAlone) {
  const MeshHandle system = construct(rightTriangle().withTagged({0}));
  const Field values = {kNaN, 2, 3};
  Field results = {7, 8, 9};
  const auto statusOf = [&](const MeshSystem* handle, int count) {
    int status = Construction::kUnwritten;
    std::int64_t first = -777;
    qelmsolveCheckedTagged(handle, count, values.data(), nullptr, results.data(), &first, &status);
    EXPECT_EQ(first, -1);
    return status;
  };
  EXPECT_EQ(statusOf(nullptr, -1), 1);
  EXPECT_EQ(statusOf(system.get(), -1), 1);
  system->vertexOrder.clear();
  EXPECT_EQ(statusOf(system.get(), 1), 2);
  EXPECT_EQ(statusOf(system.get(), -1), 2) << "the vertex order is looked at first";
  EXPECT_EQ(results, (Field{7, 8, 9}));
}

TEST(CheckedSolveStatus, OfNoFieldIsSuccessWithoutAnyArray) {
  const MeshHandle system = construct(rightTriangle().withTagged({0}));
  int status = Construction::kUnwritten;
  qelmsolveCheckedTagged(system.get(), 0, nullptr, nullptr, nullptr, nullptr, &status);
  EXPECT_EQ(status, QELM_STATUS_OK);
}

}  // namespace
}  // namespace qelm::test
