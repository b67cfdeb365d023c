// One field and many at once: the bits of the plain form, whatever the count, the width
// of a block, the arrays that are one, and what the fields hold.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <thread>
#include <vector>

#include "interface/mesh_system.h"
#include "qelm.h"
#include "solve/batch_solve.h"
#include "support/compare.h"
#include "support/handle.h"
#include "support/meshes.h"
#include "support/plain_solve.h"
#include "support/random.h"

namespace qelm::test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Field randomFields(const Mesh& mesh, int count, std::uint64_t seed) {
  Random random(seed);
  Field fields(static_cast<std::size_t>(mesh.vertexCount() * count));
  for (double& v : fields) v = uniform(random, -3, 5);
  return fields;
}

Field part(const Field& fields, int index, int n) {
  const auto first = fields.begin() + static_cast<std::ptrdiff_t>(index) * n;
  return {first, first + n};
}

/// What the plain form gives for each. Without loads, `loads` is empty.
Field plain(const MeshHandle& system, int count, const Field& values, const Field& loads) {
  const auto n = static_cast<int>(system->vertexCount);
  Field all;
  for (int k = 0; k < count; ++k) {
    const Field result =
        plainSolve(*system, part(values, k, n), loads.empty() ? Field() : part(loads, k, n));
    all.insert(all.end(), result.begin(), result.end());
  }
  return all;
}

/// What as many single solves give.
Field oneByOne(const MeshHandle& system, int count, const Field& values, const Field& loads) {
  const auto n = static_cast<int>(system->vertexCount);
  Field all;
  for (int k = 0; k < count; ++k) {
    const Field value = part(values, k, n);
    Field result(value.size(), -777.0);
    int status = Construction::kUnwritten;
    if (loads.empty()) {
      qelmsolveTagged(system.get(), value.data(), result.data(), &status);
    } else {
      qelmsolvePTagged(system.get(), value.data(), part(loads, k, n).data(), result.data(),
                       &status);
    }
    EXPECT_EQ(status, QELM_STATUS_OK);
    all.insert(all.end(), result.begin(), result.end());
  }
  return all;
}

Field together(const MeshHandle& system, int count, const Field& values, const Field& loads) {
  Field results(values.size(), -777.0);
  int status = Construction::kUnwritten;
  qelmsolveManyTagged(system.get(), count, values.data(), loads.empty() ? nullptr : loads.data(),
                      results.data(), &status);
  EXPECT_EQ(status, QELM_STATUS_OK);
  return results;
}

/// The same bits, any NaN standing for any other.
testing::AssertionResult sameBitsOrBothNaN(Field actual, Field expected) {
  for (Field* field : {&actual, &expected}) {
    for (double& v : *field) v = std::isnan(v) ? kNaN : v;
  }
  return sameBits(actual, expected);
}

TEST(BatchSolve, HasThePlainBitsForEveryCount) {
  const Mesh mesh = openSurface(14, 13, 3).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  for (int count = 1; count <= 2 * kBatchWidth + 3; ++count) {
    const Field values = randomFields(mesh, count, 1);
    const Field loads = randomFields(mesh, count, 2);
    ASSERT_TRUE(sameBits(together(system, count, values, {}), plain(system, count, values, {})))
        << count << " fields";
    ASSERT_TRUE(
        sameBits(together(system, count, values, loads), plain(system, count, values, loads)))
        << count << " fields with loads";
  }
}

/// All kinds of surfaces and of tags.
std::vector<Mesh> variousMeshes() {
  return {sphereMesh(3).withTagged({3, 77}, 2),   torusMesh(14, 8).withTagged({0, 50, 70}, 3),
          gridMesh(9, 8).withTagged({0}),         sliverStrip(30, 1e-4).withTagged({0, 1, 61}),
          gridMesh(5, 5).withEveryVertexTagged(), openSurface(40, 40, 9).withBoundaryTagged()};
}

TEST(BatchSolve, HasThePlainBitsOnOtherMeshes) {
  for (const Mesh& mesh : variousMeshes()) {
    const MeshHandle system = construct(mesh);
    const int count = 2 * kBatchWidth + 1;
    const Field values = randomFields(mesh, count, 4);
    const Field loads = randomFields(mesh, count, 5);
    EXPECT_TRUE(sameBits(together(system, count, values, {}), plain(system, count, values, {})));
    EXPECT_TRUE(
        sameBits(together(system, count, values, loads), plain(system, count, values, loads)));
  }
}

TEST(SingleSolve, HasThePlainBits) {
  for (const Mesh& mesh : variousMeshes()) {
    const MeshHandle system = construct(mesh);
    const Field values = randomFields(mesh, 3, 21);
    const Field loads = randomFields(mesh, 3, 22);
    EXPECT_TRUE(sameBits(oneByOne(system, 3, values, {}), plain(system, 3, values, {})));
    EXPECT_TRUE(sameBits(oneByOne(system, 3, values, loads), plain(system, 3, values, loads)));
  }
}

TEST(BatchSolve, HasTheSameBitsForEveryWidth) {
  const Mesh mesh = openSurface(14, 13, 3).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const int count = 37;
  const Field values = randomFields(mesh, count, 6);
  const Field expected = plain(system, count, values, {});
  for (const int width : {1, 2, 4, 8, 16, 32}) {
    Field results(values.size(), -777.0);
    solveBatch(*system, {values, {}, results}, width);
    EXPECT_TRUE(sameBits(results, expected)) << "width " << width;
  }
}

// A single solve passes over columns of zeros; the fields of a block differ in theirs.
TEST(BatchSolve, KeepsZerosInfinitiesAndNaNOfOneFieldAwayFromTheOthers) {
  const Mesh mesh = openSurface(9, 8, 5).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const auto n = static_cast<std::size_t>(mesh.vertexCount());
  const double odd[] = {0.0, -0.0, kInf, -kInf, kNaN, 1e308, 5e-324};
  Random random(11);
  for (int round = 0; round < 40; ++round) {
    const int count = uniformInt(random, 1, 2 * kBatchWidth);
    Field values(n * static_cast<std::size_t>(count), 0.0);
    Field loads(values.size(), 0.0);
    for (Field* fields : {&values, &loads}) {
      for (double& v : *fields) {
        const int kind = uniformInt(random, 0, 60);
        if (kind < 7) v = odd[kind];
        if (kind == 7) v = uniform(random, -1, 1);
      }
    }
    for (const Field& load : {Field(), loads}) {
      const Field expected = plain(system, count, values, load);
      ASSERT_TRUE(sameBitsOrBothNaN(together(system, count, values, load), expected))
          << "round " << round << (load.empty() ? "" : ", with loads");
      ASSERT_TRUE(sameBitsOrBothNaN(oneByOne(system, count, values, load), expected))
          << "round " << round << (load.empty() ? "" : ", with loads");
    }
  }
}

TEST(BatchSolve, IgnoresLoadsAtFixedAndValuesAtFreeVertices) {
  const Mesh mesh = openSurface(10, 9, 1).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  Field values = randomFields(mesh, 5, 7);
  Field loads = randomFields(mesh, 5, 8);
  const Field expected = together(system, 5, values, loads);
  for (std::size_t i = 0; i < values.size(); ++i) {
    (mesh.tags[i % mesh.tags.size()] == 0 ? values : loads)[i] = kNaN;
  }
  EXPECT_TRUE(sameBits(together(system, 5, values, loads), expected));
}

TEST(BatchSolve, MayTakeOneArrayForSeveral) {
  const Mesh mesh = openSurface(11, 10, 4).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const int count = kBatchWidth + 3;
  const Field values = randomFields(mesh, count, 9);
  const Field loads = randomFields(mesh, count, 10);
  const Field expected = together(system, count, values, loads);
  int status = Construction::kUnwritten;

  Field overValues = values;
  qelmsolveManyTagged(system.get(), count, overValues.data(), loads.data(), overValues.data(),
                      &status);
  EXPECT_TRUE(sameBits(overValues, expected));
  Field overLoads = loads;
  qelmsolveManyTagged(system.get(), count, values.data(), overLoads.data(), overLoads.data(),
                      &status);
  EXPECT_TRUE(sameBits(overLoads, expected));

  Field all = values;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (mesh.tags[i % mesh.tags.size()] == 0) all[i] = loads[i];
  }
  qelmsolveManyTagged(system.get(), count, all.data(), all.data(), all.data(), &status);
  EXPECT_TRUE(sameBits(all, expected)) << "one array for all three";
}

TEST(BatchSolve, AfterAFailedFactorisationGivesZerosAtFreeVertices) {
  const MeshHandle system = construct(twoPartsOneTagged());
  ASSERT_EQ(qelminfo(system.get()), 1);
  const Field values = {2.5, 9, 9, 9, 9, 9, -1, 9, 9, 9, 9, 9};
  const Field expected = {2.5, 0, 0, 0, 0, 0, -1, 0, 0, 0, 0, 0};
  EXPECT_TRUE(sameBits(together(system, 2, values, {}), expected));
  EXPECT_TRUE(sameBits(together(system, 2, values, Field(12, 3.0)), expected));
}

TEST(BatchSolveStatus, IsThatOfTheFirstThingWrongAndLeavesTheResultsAlone) {
  const MeshHandle system = construct(rightTriangle().withTagged({0}));
  const Field values = {1, 2, 3};
  Field results = {7, 8, 9};
  const auto statusOf = [&](const MeshSystem* handle, int count) {
    int status = Construction::kUnwritten;
    qelmsolveManyTagged(handle, count, values.data(), nullptr, results.data(), &status);
    return status;
  };
  EXPECT_EQ(statusOf(nullptr, -1), 1);
  EXPECT_EQ(statusOf(system.get(), -1), 1);
  EXPECT_EQ(statusOf(system.get(), std::numeric_limits<int>::min()), 1);
  system->vertexOrder.clear();
  EXPECT_EQ(statusOf(system.get(), 1), 2);
  EXPECT_EQ(statusOf(system.get(), -1), 2) << "the vertex order is looked at first";
  EXPECT_EQ(results, (Field{7, 8, 9}));
}

TEST(BatchSolveStatus, OfNoFieldIsSuccessWithoutAnyArray) {
  const MeshHandle system = construct(rightTriangle().withTagged({0}));
  int status = Construction::kUnwritten;
  qelmsolveManyTagged(system.get(), 0, nullptr, nullptr, nullptr, &status);
  EXPECT_EQ(status, QELM_STATUS_OK);
}

TEST(BatchSolve, RunsOnManyThreadsWithTheSameBits) {
  const Mesh mesh = openSurface(20, 20, 13).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const int count = kBatchWidth + 5;
  const Field values = randomFields(mesh, count, 12);
  const Field expected = together(system, count, values, {});
  std::vector<Field> results(4, Field(values.size(), -777.0));
  std::vector<std::thread> threads;
  for (Field& result : results) {
    threads.emplace_back([&] {
      int status = Construction::kUnwritten;
      for (int round = 0; round < 5; ++round) {
        qelmsolveManyTagged(system.get(), count, values.data(), nullptr, result.data(), &status);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const Field& result : results) EXPECT_TRUE(sameBits(result, expected));
}

}  // namespace
}  // namespace qelm::test
