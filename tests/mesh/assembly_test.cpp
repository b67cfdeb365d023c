// The assembled blocks: hand-computed, against a word-for-word element loop bit
// by bit, and against the cotangent form in long double.
#include <gtest/gtest.h>

#include <Eigen/SparseCore>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "interface/mesh_system.h"
#include "support/compare.h"
#include "support/handle.h"
#include "support/meshes.h"
#include "support/oracle.h"
#include "support/plain_assembly.h"
#include "support/random.h"

namespace qelm::test {
namespace {

double entry(const SparseBlock& block, int row, int column) { return block.coeff(row, column); }

void expectBlock(const SparseBlock& actual, const SparseBlock& expected) {
  ASSERT_EQ(actual.rows(), expected.rows());
  ASSERT_EQ(actual.cols(), expected.cols());
  ASSERT_EQ(actual.nonZeros(), expected.nonZeros());
  ASSERT_TRUE(actual.isCompressed());
  for (Eigen::Index j = 0; j < expected.outerSize(); ++j) {
    SparseBlock::InnerIterator a(actual, j);
    for (SparseBlock::InnerIterator e(expected, j); e; ++e, ++a) {
      ASSERT_EQ(a.row(), e.row()) << "column " << j;
      ASSERT_TRUE(sameBits({&a.valueRef(), 1}, {&e.valueRef(), 1}))
          << "row " << e.row() << ", column " << j;
    }
  }
}

/// FNV-1a over the 64-bit words of the stored values, then over the row indices.
constexpr std::uint64_t kHashStart = 0xcbf29ce484222325;

std::uint64_t hashOfWords(std::uint64_t hash, const SparseBlock& block) {
  const auto add = [&hash](std::uint64_t word) { hash = (hash ^ word) * 0x100000001b3; };
  for (Eigen::Index i = 0; i < block.nonZeros(); ++i) {
    add(std::bit_cast<std::uint64_t>(block.valuePtr()[i]));
    add(static_cast<std::uint64_t>(block.innerIndexPtr()[i]));
  }
  return hash;
}

void expectPlainAssembly(const Mesh& mesh) {
  const MeshHandle system = construct(mesh);
  ASSERT_NE(system, nullptr);
  const PlainAssembly plain =
      plainAssembly(static_cast<int>(system->fixedCount), static_cast<int>(system->vertexCount),
                    *system->vertices, *system->triangles);
  ASSERT_EQ(plain.status, 0);
  expectBlock(*system->freeFreeBlock, plain.freeFree);
  expectBlock(*system->freeFixedBlock, plain.freeFixed);
}

/// Worst difference to the cotangent form, relative to the row's diagonal.
double worstCotangentError(const Mesh& mesh) {
  const MeshHandle system = construct(mesh);
  const DenseMatrix oracle = cotangentStiffness(mesh);
  const auto t = static_cast<int>(system->fixedCount);
  const auto n = static_cast<int>(system->vertexCount);
  double worst = 0;
  for (int r = t; r < n; ++r) {
    const auto row = static_cast<std::size_t>(system->vertexOrder[static_cast<std::size_t>(r)]);
    const auto diagonal = static_cast<double>(oracle.at(row, row));
    for (int c = 0; c < n; ++c) {
      const auto column =
          static_cast<std::size_t>(system->vertexOrder[static_cast<std::size_t>(c)]);
      const double actual = c < t ? entry(*system->freeFixedBlock, r - t, c)
                                  : entry(*system->freeFreeBlock, r - t, c - t);
      const auto expected = static_cast<double>(oracle.at(row, column));
      worst = std::fmax(worst, std::fabs(actual - expected) / diagonal);
    }
  }
  return worst;
}

// The hypotenuse is irrational, so a few roundings show.
constexpr double kElementTolerance = 4 * std::numeric_limits<double>::epsilon();

TEST(Element, OfTheRightTriangle) {
  const MeshHandle system = construct(rightTriangle());
  // No tags: system order is the input reversed, so vertex i is row 2 - i.
  const double expected[3][3] = {{1, -0.5, -0.5}, {-0.5, 0.5, 0}, {-0.5, 0, 0.5}};
  for (int a = 0; a < 3; ++a) {
    for (int b = 0; b < 3; ++b) {
      EXPECT_NEAR(entry(*system->freeFreeBlock, 2 - a, 2 - b), expected[a][b], kElementTolerance)
          << a << ' ' << b;
    }
  }
}

TEST(Blocks, OfASingleTriangleWithOneTaggedVertex) {
  const MeshHandle system = construct(rightTriangle().withTagged({0}));
  ASSERT_EQ(system->freeFreeBlock->rows(), 2);
  ASSERT_EQ(system->freeFreeBlock->cols(), 2);
  ASSERT_EQ(system->freeFixedBlock->rows(), 2);
  ASSERT_EQ(system->freeFixedBlock->cols(), 1);
  EXPECT_NEAR(entry(*system->freeFreeBlock, 0, 0), 0.5, kElementTolerance);
  EXPECT_NEAR(entry(*system->freeFreeBlock, 0, 1), 0.0, kElementTolerance);
  EXPECT_NEAR(entry(*system->freeFreeBlock, 1, 1), 0.5, kElementTolerance);
  EXPECT_NEAR(entry(*system->freeFixedBlock, 0, 0), -0.5, kElementTolerance);
  EXPECT_NEAR(entry(*system->freeFixedBlock, 1, 0), -0.5, kElementTolerance);
}

TEST(Blocks, OfTwoTrianglesAddUpOnTheSharedEdge) {
  // The diagonal 0-2 lies opposite two right angles, whose cotangents are 0;
  // stretching the square makes both contribute.
  const Mesh mesh = twoTriangles().mapped([](Point p) { return Point{p.x + p.y, 2 * p.y, 0}; });
  const MeshHandle system = construct(mesh);
  const DenseMatrix oracle = cotangentStiffness(mesh);
  EXPECT_NE(oracle.at(0, 2), 0.0L);
  EXPECT_NEAR(entry(*system->freeFreeBlock, 3, 1), static_cast<double>(oracle.at(0, 2)), 1e-15);
}

TEST(Blocks, WithEveryVertexTaggedAreEmpty) {
  const Mesh mesh = gridMesh(4, 3).withEveryVertexTagged();
  const Construction c = tryConstruct(mesh);
  EXPECT_EQ(c.status, 0);
  EXPECT_EQ(c.handle->freeFreeBlock->rows(), 0);
  EXPECT_EQ(c.handle->freeFreeBlock->cols(), 0);
  EXPECT_EQ(c.handle->freeFixedBlock->rows(), 0);
  EXPECT_EQ(c.handle->freeFixedBlock->cols(), 12);
  EXPECT_EQ(c.handle->freeSolver->rows(), 0);
  EXPECT_EQ(qelminfo(c.handle.get()), 0);
}

TEST(Blocks, WithNoVertexTaggedHoldTheWholeSingularMatrix) {
  const Construction c = tryConstruct(rightTriangle());
  EXPECT_EQ(c.status, 0) << "a failed factorisation is no failure of the constructor";
  EXPECT_EQ(c.taggedCount, 0);
  EXPECT_EQ(c.handle->freeFreeBlock->rows(), 3);
  EXPECT_EQ(c.handle->freeFixedBlock->rows(), 3);
  EXPECT_EQ(c.handle->freeFixedBlock->cols(), 0);
  // The entries are symmetric in the legs, and elimination meets an exact zero.
  EXPECT_EQ(qelminfo(c.handle.get()), 1);
}

TEST(Blocks, RowsOfTheWholeMatrixSumToZero) {
  for (const Mesh& mesh : {sphereMesh(2), torusMesh(16, 9), openSurface(9, 7, 4)}) {
    const MeshHandle system = construct(mesh);
    const SparseBlock& k = *system->freeFreeBlock;
    const Eigen::VectorXd sums = k * Eigen::VectorXd::Ones(k.cols());
    for (Eigen::Index r = 0; r < k.rows(); ++r) {
      // A row holds about seven entries; each carries a few roundings.
      EXPECT_LE(std::fabs(sums[r]), 1e-14 * k.coeff(r, r)) << "row " << r;
    }
  }
}

// The sphere's coordinates come from divisions and square roots alone, which
// round alike everywhere; so this number is the same on every platform.
TEST(Blocks, HaveTheSameBitsOnEveryPlatform) {
  const MeshHandle system = construct(sphereMesh(3).withTagged({0, 40, 41}));
  EXPECT_EQ(hashOfWords(hashOfWords(kHashStart, *system->freeFreeBlock), *system->freeFixedBlock),
            0xc9bed25c3a3f743cULL);
}

TEST(Blocks, AreSymmetricBitByBit) {
  const MeshHandle system = construct(openSurface(9, 8, 6));
  const SparseBlock transposed = system->freeFreeBlock->transpose();
  expectBlock(transposed, *system->freeFreeBlock);
}

TEST(Blocks, HaveTheBitsOfThePlainElementLoop) {
  expectPlainAssembly(rightTriangle().withTagged({1}));
  expectPlainAssembly(sphereMesh(3).withTagged({0, 17, 100}));
  expectPlainAssembly(torusMesh(24, 12).withTagged({5}, 2));
  expectPlainAssembly(openSurface(21, 17, 8).withBoundaryTagged(3));
  expectPlainAssembly(sliverStrip(12, 1e-7).withTagged({0, 12}));
  expectPlainAssembly(gridMesh(5, 5).withEveryVertexTagged());
  expectPlainAssembly(gridMesh(5, 5));
}

TEST(Blocks, HaveTheBitsOfThePlainElementLoopOnRandomSoups) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int round = 0; round < 100; ++round) {
    // Any triangles over random points: edges shared by many, both orientations.
    const int n = uniformInt(random, 3, 12);
    Mesh mesh;
    for (int i = 0; i < 3 * n; ++i) mesh.vertices.push_back(uniform(random, -10, 10));
    for (int i = 0; i < n; ++i) mesh.tags.push_back(uniformInt(random, 0, 1));
    for (int i = 0; i < n; ++i) {
      const auto corners = permutation(random, n);
      mesh.triangles.insert(mesh.triangles.end(), {i, corners[0], corners[1]});
      const auto base = mesh.triangles.size() - 3;
      if (corners[0] == i || corners[1] == i) {
        mesh.triangles[base] = corners[2];
        mesh.triangles.insert(mesh.triangles.end(), {i, (i + 1) % n, (i + 2) % n});
      }
    }
    expectPlainAssembly(mesh);
  }
}

// Sides at right angles give entries of 0.0 and -0.0, alone at their edge or with others.
TEST(Blocks, HaveTheBitsOfThePlainElementLoopWhereContributionsAreZeros) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  constexpr double kCoordinates[] = {0.0, -0.0, 1, -1, 2};
  for (int round = 0; round < 300; ++round) {
    const int n = uniformInt(random, 3, 7);
    Mesh mesh;
    for (int i = 0; i < 3 * n; ++i) {
      mesh.vertices.push_back(kCoordinates[static_cast<std::size_t>(uniformInt(random, 0, 4))]);
    }
    for (int i = 0; i < n; ++i) {
      mesh.tags.push_back(uniformInt(random, 0, 3) == 0 ? 1 : 0);
      for (const int step : {0, 1, 2}) mesh.triangles.push_back((i + step) % n);
    }
    expectPlainAssembly(mesh);
  }
}

TEST(Blocks, HaveTheBitsOfThePlainElementLoopInRandomOrder) {
  // Large enough for vertices to lie far apart, where memory is asked for ahead.
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  const Mesh mesh = gridMesh(180, 170);
  const Mesh shuffled = relabelled(mesh, permutation(random, mesh.vertexCount()));
  expectPlainAssembly(shuffled.withBoundaryTagged());
  expectPlainAssembly(shuffled.withTagged({0}));
}

TEST(Blocks, HaveTheBitsOfThePlainElementLoopWhereManyTrianglesMeet) {
  // Far more triangles at every vertex and edge than a surface has.
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (const int n : {4, 9, 25, 70}) {
    Mesh mesh;
    for (int i = 0; i < 3 * n; ++i) mesh.vertices.push_back(uniform(random, -10, 10));
    for (int i = 0; i < n; ++i) mesh.tags.push_back(i % 4 == 1 ? 1 : 0);
    for (int round = 0; round < 100; ++round) {
      const auto corners = permutation(random, n);
      for (int i = 0; i + 2 < n; i += 3) {
        mesh.triangles.insert(mesh.triangles.end(), corners.begin() + i, corners.begin() + i + 3);
      }
    }
    for (int i = 0; i < n; ++i) {
      mesh.triangles.insert(mesh.triangles.end(), {i, (i + 1) % n, (i + 2) % n});
    }
    expectPlainAssembly(mesh);
  }
}

TEST(Blocks, HaveTheBitsOfThePlainElementLoopAroundAHub) {
  // Vertex 0 has the highest system index, so all its edges belong to it.
  expectPlainAssembly(fan(3000).withTagged({17}));
}

TEST(Blocks, OfAHubWithVeryManyTrianglesTakeNoQuadraticTime) {
  // With a search through all neighbours these would be 45 billion comparisons.
  const int triangles = 300'000;
  const MeshHandle withoutHub = construct(fan(triangles).withTagged({0}));
  EXPECT_EQ(withoutHub->freeFreeBlock->nonZeros(), triangles + 2 * triangles);
  // One rim vertex less: it takes two rim edges and one to the hub with it.
  const MeshHandle withHub = construct(fan(triangles).withTagged({1}));
  EXPECT_EQ(withHub->freeFreeBlock->nonZeros(),
            triangles + 2 * (triangles - 1) + 2 * (triangles - 2));
}

TEST(Blocks, AgreeWithTheCotangentForm) {
  // A few roundings in each of a handful of terms, and none of these meshes has
  // an angle below 15 degrees to magnify them.
  const double tolerance = 2e-14;
  EXPECT_LE(worstCotangentError(gridMesh(9, 7).withBoundaryTagged()), tolerance);
  EXPECT_LE(worstCotangentError(sphereMesh(2).withTagged({3, 30})), tolerance);
  EXPECT_LE(worstCotangentError(torusMesh(14, 9).withTagged({0})), tolerance);
  EXPECT_LE(worstCotangentError(openSurface(11, 9, 12).withBoundaryTagged()), tolerance);
}

TEST(Blocks, AgreeWithTheCotangentFormOnSlivers) {
  // The foot of a height is found along an edge 1 / aspect times longer than the
  // height, so rounding errors grow by that factor.
  for (const double aspect : {1e-2, 1e-4, 1e-6}) {
    EXPECT_LE(worstCotangentError(sliverStrip(10, aspect).withTagged({0, 10})), 2e-15 / aspect)
        << aspect;
  }
}

TEST(Blocks, PermuteWithTheVertices) {
  const Mesh mesh = openSurface(8, 8, 21).withBoundaryTagged();
  Random random(7);
  const auto newIndex = permutation(random, mesh.vertexCount());
  const MeshHandle a = construct(mesh);
  const MeshHandle b = construct(relabelled(mesh, newIndex));
  const auto t = static_cast<int>(a->fixedCount);
  const auto placeInB = [&](int s) {
    const auto input = static_cast<std::size_t>(a->vertexOrder[static_cast<std::size_t>(s)]);
    return b->vertexPlace[static_cast<std::size_t>(newIndex[input])];
  };
  for (int r = t; r < mesh.vertexCount(); ++r) {
    for (int c = t; c < mesh.vertexCount(); ++c) {
      const double expected = entry(*a->freeFreeBlock, r - t, c - t);
      EXPECT_EQ(entry(*b->freeFreeBlock, placeInB(r) - t, placeInB(c) - t), expected);
    }
  }
}

TEST(ZeroArea, IsAcceptedAndMakesTheMatrixNonFinite) {
  // Three different vertices on a line: no status, by intention.
  Mesh mesh = twoTriangles().withTagged({1});
  for (double& z : mesh.vertices) z = std::min(z, 1.0);
  mesh.vertices[3 * 2] = 0.5;  // vertex 2 onto the line through 0 and 3
  mesh.vertices[3 * 2 + 1] = 0;
  mesh.vertices[3 * 3] = 0.25;
  mesh.vertices[3 * 3 + 1] = 0;
  const Construction c = tryConstruct(mesh);
  EXPECT_EQ(c.status, 0);
  ASSERT_NE(c.handle, nullptr);
  double worst = 0;
  for (Eigen::Index i = 0; i < c.handle->freeFreeBlock->nonZeros(); ++i) {
    const double v = c.handle->freeFreeBlock->valuePtr()[i];
    if (!std::isfinite(v)) worst = v;
  }
  EXPECT_FALSE(std::isfinite(worst));
}

TEST(ZeroArea, OfCoincidentPointsIsAcceptedToo) {
  Mesh mesh = twoTriangles().withTagged({1});
  for (double& c : mesh.vertices) c = 3;
  const Construction c = tryConstruct(mesh);
  EXPECT_EQ(c.status, 0);
  EXPECT_NE(c.handle, nullptr);
}

TEST(NonFiniteCoordinates, ConstructWithoutCrashing) {
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::infinity(), 1e200, 1e-200}) {
    Mesh mesh = gridMesh(4, 4).withBoundaryTagged();
    mesh.vertices[3 * 5] = bad;
    const Construction c = tryConstruct(mesh);
    EXPECT_EQ(c.status, 0) << bad;
    EXPECT_NE(c.handle, nullptr);
  }
}

}  // namespace
}  // namespace qelm::test
