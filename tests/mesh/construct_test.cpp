// The constructor: argument checks, statuses, vertex numbering, what is stored.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "interface/mesh_system.h"
#include "qelm.h"
#include "support/compare.h"
#include "support/handle.h"
#include "support/meshes.h"
#include "support/plain_assembly.h"
#include "support/random.h"

namespace qelm::test {
namespace {

using Ints = std::vector<std::int32_t>;

/// A call with every argument in the caller's hand; the handle starts non-null.
struct RawCall {
  Mesh mesh = twoTriangles();
  int vertexCount = 4;
  int triangleCount = 2;
  const double* vertices = mesh.vertices.data();
  const int* triangles = mesh.triangles.data();
  const int* tags = mesh.tags.data();

  int status = -777;
  int taggedCount = -777;
  int returned = -777;
  MeshSystem* handle = reinterpret_cast<MeshSystem*>(&status);

  void run() {
    returned = qelmctorTagged(vertexCount, vertices, triangleCount, triangles, tags, &taggedCount,
                              &status, &handle);
  }
};

void expectRefused(RawCall& call, int status) {
  call.run();
  EXPECT_EQ(call.status, status);
  EXPECT_EQ(call.returned, 1) << "the result is 1 on every path";
  EXPECT_EQ(call.handle, nullptr);
  EXPECT_EQ(call.taggedCount, 0);
}

/// A fan around 0 with one vertex for each tag.
Mesh meshWithTags(const Ints& tags) {
  return fan(static_cast<int>(tags.size()) - 1).withTags(tags);
}

TEST(ConstructArguments, VertexCountBelowOneIsStatus1) {
  for (const int n : {0, -1, INT32_MIN}) {
    RawCall call;
    call.vertexCount = n;
    expectRefused(call, 1);
  }
}

TEST(ConstructArguments, TriangleCountBelowOneIsStatus24) {
  for (const int m : {0, -1, INT32_MIN}) {
    RawCall call;
    call.triangleCount = m;
    expectRefused(call, 24);
  }
}

TEST(ConstructArguments, EachNullArrayIsStatus25) {
  RawCall vertices, triangles, tags;
  vertices.vertices = nullptr;
  triangles.triangles = nullptr;
  tags.tags = nullptr;
  expectRefused(vertices, 25);
  expectRefused(triangles, 25);
  expectRefused(tags, 25);
}

TEST(ConstructArguments, TheVertexCountIsCheckedFirstAndPointersLast) {
  RawCall everythingWrong;
  everythingWrong.vertexCount = 0;
  everythingWrong.triangleCount = 0;
  everythingWrong.vertices = nullptr;
  expectRefused(everythingWrong, 1);
  RawCall noTrianglesNoArray;
  noTrianglesNoArray.triangleCount = 0;
  noTrianglesNoArray.tags = nullptr;
  expectRefused(noTrianglesNoArray, 24);
}

TEST(ConstructArguments, TheTaggedCountMayBeNull) {
  const Mesh mesh = twoTriangles().withTagged({0});
  MeshSystem* raw = nullptr;
  int status = -777;
  EXPECT_EQ(qelmctorTagged(4, mesh.vertices.data(), 2, mesh.triangles.data(), mesh.tags.data(),
                           nullptr, &status, &raw),
            1);
  const MeshHandle handle(raw);
  EXPECT_EQ(status, 0);
  EXPECT_NE(handle, nullptr);

  raw = handle.get();
  qelmctorTagged(0, nullptr, 0, nullptr, nullptr, nullptr, &status, &raw);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(raw, nullptr);
}

TEST(Construct, SuccessReturnsOneAndReportsTheTaggedCount) {
  const Construction c = tryConstruct(gridMesh(4, 3).withTagged({1, 5, 7}));
  EXPECT_EQ(c.returned, 1);
  EXPECT_EQ(c.status, 0);
  EXPECT_EQ(c.taggedCount, 3);
  EXPECT_EQ(c.handle->fixedCount, 3);
  EXPECT_EQ(c.handle->vertexCount, 12);
}

TEST(ConstructDefects, ARepeatedVertexIsStatus23WithTheTaggedCountReported) {
  for (const Ints& bad : {Ints{5, 5, 7}, Ints{7, 5, 5}, Ints{5, 7, 5}}) {
    Mesh mesh = gridMesh(3, 3).withTagged({0, 1});
    std::copy(bad.begin(), bad.end(), mesh.triangles.begin() + 6);
    const Construction c = tryConstruct(mesh);
    EXPECT_EQ(c.status, 23);
    EXPECT_EQ(c.returned, 1);
    EXPECT_EQ(c.handle, nullptr);
    EXPECT_EQ(c.taggedCount, 2);
  }
}

TEST(ConstructDefects, AVertexInNoTriangleIsStatus24WithTheTaggedCountReported) {
  for (const bool tagged : {false, true}) {
    Mesh mesh = twoTriangles().withTagged({3});
    mesh.vertices.insert(mesh.vertices.end(), {5, 5, 5});
    mesh.tags.push_back(tagged ? 2 : 0);
    const Construction c = tryConstruct(mesh);
    EXPECT_EQ(c.status, 24);
    EXPECT_EQ(c.handle, nullptr);
    EXPECT_EQ(c.taggedCount, tagged ? 2 : 1);
  }
}

TEST(ConstructDefects, ARepeatedVertexComesBeforeAnUnusedOne) {
  Mesh mesh = twoTriangles();
  mesh.triangles = {0, 1, 1, 0, 1, 2};
  EXPECT_EQ(tryConstruct(mesh).status, 23);
}

TEST(ConstructDefects, ARepeatedVertexIsFoundInEveryTriangle) {
  const Mesh mesh = gridMesh(5, 6).withBoundaryTagged();
  for (std::size_t j = 0; j < mesh.triangles.size(); j += 3) {
    for (std::size_t k = 0; k < 3; ++k) {
      Mesh bad = mesh;
      bad.triangles[j + k] = bad.triangles[j + (k + 1) % 3];
      EXPECT_EQ(tryConstruct(bad).status, 23) << "triangle " << j / 3 << ", corner " << k;
    }
  }
}

TEST(ConstructDefects, AVertexOfTrianglesWithoutAreaAloneIsUsed) {
  // All entries are not numbers or infinite, or all products underflow to 0.
  for (const double size : {0.0, 1e-300, 1e-160, 1.0}) {
    Mesh mesh = rightTriangle().withTagged({1});
    mesh.vertices = {0, 0, 0, size, 0, 0, 2 * size, size * 1e-200, 0};
    EXPECT_EQ(tryConstruct(mesh).status, 0) << size;
  }
}

TEST(ConstructDefects, AreThoseOfThePlainForm) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  std::array<int, 25> times{};
  for (int round = 0; round < 3000; ++round) {
    const int n = uniformInt(random, 3, 9);
    Mesh mesh;
    for (int i = 0; i < 3 * n; ++i) mesh.vertices.push_back(uniform(random, -1, 1));
    for (int i = 0; i < n; ++i) mesh.tags.push_back(uniformInt(random, 0, 4));
    for (int i = uniformInt(random, 1, 12); i > 0; --i) {
      const int first = uniformInt(random, 0, n - 1);
      const int second = (first + uniformInt(random, 1, n - 1)) % n;
      int third = uniformInt(random, 0, n - 1);
      if (uniformInt(random, 0, 20) != 0) {
        while (third == first || third == second) third = (third + 1) % n;
      }
      mesh.triangles.insert(mesh.triangles.end(), {first, second, third});
    }
    const int status = plainAssembly(0, n, mesh.vertices, mesh.triangles).status;
    ASSERT_EQ(tryConstruct(mesh).status, status) << "round " << round;
    ++times.at(static_cast<std::size_t>(status));
  }
  EXPECT_GT(times[0], 300);
  EXPECT_GT(times[23], 300);
  EXPECT_GT(times[24], 300);
}

TEST(Numbering, PutsTaggedVerticesFirstAndFillsFreeOnesFromTheBack) {
  const MeshHandle system = construct(meshWithTags({0, 1, 5, 3, 2, 0}));
  EXPECT_EQ(system->fixedCount, 3);
  EXPECT_EQ(system->vertexPlace, (Ints{5, 0, 4, 1, 2, 3}));
  EXPECT_EQ(system->vertexOrder, (Ints{1, 3, 4, 5, 2, 0}));
}

TEST(Numbering, TreatsTags1To3AlikeAndEveryOtherValueAsFree) {
  for (const std::int32_t tag : {1, 2, 3}) {
    EXPECT_EQ(construct(meshWithTags({0, tag, 0, 0}))->fixedCount, 1) << tag;
  }
  for (const std::int32_t tag : {0, 4, -1, 5, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(construct(meshWithTags({1, tag, 0, 0}))->fixedCount, 1) << tag;
  }
}

TEST(Numbering, WithNoTaggedVertexReversesTheInputOrder) {
  const MeshHandle system = construct(meshWithTags({0, 0, 0, 0}));
  EXPECT_EQ(system->fixedCount, 0);
  EXPECT_EQ(system->vertexOrder, (Ints{3, 2, 1, 0}));
}

TEST(Numbering, WithEveryVertexTaggedKeepsTheInputOrder) {
  const MeshHandle system = construct(meshWithTags({1, 2, 3, 1}));
  EXPECT_EQ(system->fixedCount, 4);
  EXPECT_EQ(system->vertexOrder, (Ints{0, 1, 2, 3}));
}

TEST(Numbering, IsAPairOfInversePermutationsForRandomTags) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int round = 0; round < 200; ++round) {
    Ints tags;
    const int n = uniformInt(random, 3, 40);
    for (int i = 0; i < n; ++i) tags.push_back(uniformInt(random, -1, 5));
    const MeshHandle system = construct(meshWithTags(tags));
    Ints expectedOrder;
    for (int i = 0; i < n; ++i) {
      if (tags[static_cast<std::size_t>(i)] >= 1 && tags[static_cast<std::size_t>(i)] <= 3) {
        expectedOrder.push_back(i);
      }
    }
    ASSERT_EQ(system->fixedCount, static_cast<std::int64_t>(expectedOrder.size()));
    for (int i = n - 1; i >= 0; --i) {
      if (std::find(expectedOrder.begin(), expectedOrder.begin() + system->fixedCount, i) ==
          expectedOrder.begin() + system->fixedCount) {
        expectedOrder.push_back(i);
      }
    }
    ASSERT_EQ(system->vertexOrder, expectedOrder);
    for (int i = 0; i < n; ++i) {
      const auto s = system->vertexPlace[static_cast<std::size_t>(i)];
      ASSERT_EQ(system->vertexOrder[static_cast<std::size_t>(s)], i);
    }
  }
}

TEST(Stored, MeshIsRenumberedWithTriangleAndCornerOrderKept) {
  const Mesh mesh = openSurface(6, 5, 11).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  ASSERT_EQ(system->vertices->size(), mesh.vertices.size());
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    const auto s = static_cast<std::size_t>(system->vertexPlace[static_cast<std::size_t>(i)]);
    const Point p = mesh.point(i);
    const double expected[] = {p.x, p.y, p.z};
    EXPECT_TRUE(sameBits({system->vertices->data() + 3 * s, 3}, expected)) << "vertex " << i;
  }
  Ints expected;
  for (const auto v : mesh.triangles) {
    expected.push_back(system->vertexPlace[static_cast<std::size_t>(v)]);
  }
  EXPECT_EQ(*system->triangles, expected);
}

TEST(Stored, NegativeZerosAmongCoordinatesStayNegative) {
  Mesh mesh = rightTriangle().withTagged({1});
  mesh.vertices = {-0.0, 0.0, -0.0, 1.0, -0.0, 0.0, 0.0, 1.0, -0.0};
  const MeshHandle system = construct(mesh);
  for (std::size_t i = 0; i < 3; ++i) {
    const auto s = static_cast<std::size_t>(system->vertexPlace[i]);
    EXPECT_TRUE(sameBits({system->vertices->data() + 3 * s, 3}, {mesh.vertices.data() + 3 * i, 3}))
        << "vertex " << i;
  }
}

TEST(Stored, TagsAreACopyInInputOrder) {
  const Ints tags = {0, 1, 5, 3, 2, -7};
  Mesh mesh = meshWithTags(tags);
  const MeshHandle system = construct(mesh);
  std::fill(mesh.tags.begin(), mesh.tags.end(), 99);
  EXPECT_EQ(system->tags, tags);
}

TEST(Stored, NothingOfTheCallersArraysIsKept) {
  Mesh mesh = openSurface(7, 7, 5).withBoundaryTagged();
  const Field values = mesh.sample([](Point p) { return p.x + p.z; });
  const MeshHandle system = construct(mesh);
  const Field before = solve(system, values);
  std::fill(mesh.vertices.begin(), mesh.vertices.end(), -1);
  std::fill(mesh.triangles.begin(), mesh.triangles.end(), -1);
  EXPECT_TRUE(sameBits(solve(system, values), before));
}

TEST(Duplicate, CopiesOrdersAndTagsAndSharesTheRest) {
  const MeshHandle system = construct(openSurface(5, 5, 2).withBoundaryTagged(2));
  const MeshHandle copy = duplicate(system);
  EXPECT_EQ(copy->fixedCount, system->fixedCount);
  EXPECT_EQ(copy->vertexCount, system->vertexCount);
  EXPECT_EQ(copy->vertexPlace, system->vertexPlace);
  EXPECT_EQ(copy->vertexOrder, system->vertexOrder);
  EXPECT_EQ(copy->tags, system->tags);
  EXPECT_NE(copy->tags.data(), system->tags.data());
  EXPECT_EQ(copy->vertices, system->vertices);
  EXPECT_EQ(copy->triangles, system->triangles);
  EXPECT_EQ(copy->freeFixedBlock, system->freeFixedBlock);
  EXPECT_EQ(copy->freeFreeBlock, system->freeFreeBlock);
  EXPECT_EQ(copy->freeSolver, system->freeSolver);
}

}  // namespace
}  // namespace qelm::test
