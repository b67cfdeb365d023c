// Accessors, duplication and release.
#include "support/handle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "qelm.h"
#include "support/compare.h"
#include "support/meshes.h"
#include "support/random.h"

namespace qelm::test {
namespace {

// Never dereferenced: stands for "what the caller had there before".
template <class T>
T* sentinel() {
  static T object{};
  return &object;
}

TEST(NullHandle, IsAnsweredWithoutTouchingOutParameters) {
  const double* coordinates = sentinel<const double>();
  const int* indices = sentinel<const int>();
  MeshSystem* copy = reinterpret_cast<MeshSystem*>(sentinel<char>());
  EXPECT_EQ(qelminfo(nullptr), 7);
  EXPECT_EQ(qelverts(nullptr, &coordinates), 0);
  EXPECT_EQ(coordinates, sentinel<const double>());
  EXPECT_EQ(qeltris(nullptr, &indices), 0);
  EXPECT_EQ(indices, sentinel<const int>());
  EXPECT_EQ(usecount(nullptr), 0);
  dupl(nullptr, &copy);
  EXPECT_EQ(copy, reinterpret_cast<MeshSystem*>(sentinel<char>()));
  qelmfree(nullptr);
}

TEST(NullHandle, AcceptsNullOutParametersToo) {
  EXPECT_EQ(qelverts(nullptr, nullptr), 0);
  EXPECT_EQ(qeltris(nullptr, nullptr), 0);
  dupl(nullptr, nullptr);
}

TEST(Info, IsZeroForAFreshWellPosedSystem) {
  EXPECT_EQ(qelminfo(construct(gridMesh(5, 4).withBoundaryTagged()).get()), 0);
}

TEST(Triangles, ReportTheVertexCountOnPurpose) {
  const MeshHandle system = construct(twoTriangles().withTagged({2}));
  const int* indices = nullptr;
  EXPECT_EQ(qeltris(system.get(), &indices), 4) << "four vertices, two triangles";
  // Vertex 2 is tagged and comes first; 0, 1, 3 fill from the back.
  const std::vector<int> expected = {3, 2, 0, 3, 0, 1};
  EXPECT_EQ(std::vector<int>(indices, indices + 6), expected);
}

TEST(Vertices, ComeInSystemOrder) {
  const Mesh mesh = twoTriangles().withTagged({2});
  const MeshHandle system = construct(mesh);
  const double* coordinates = nullptr;
  EXPECT_EQ(qelverts(system.get(), &coordinates), 4);
  const std::vector<double> expected = {1, 1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0};
  EXPECT_TRUE(sameBits({coordinates, 12}, expected));
}

TEST(UseCount, FollowsCopiesUpAndDown) {
  const MeshHandle system = construct(gridMesh(3, 3).withBoundaryTagged());
  EXPECT_EQ(usecount(system.get()), 1);
  MeshHandle first = duplicate(system);
  EXPECT_EQ(usecount(system.get()), 2);
  EXPECT_EQ(usecount(first.get()), 2);
  const MeshHandle second = duplicate(first);
  EXPECT_EQ(usecount(system.get()), 3);
  first.reset();
  EXPECT_EQ(usecount(second.get()), 2);
}

// The factorisation is there and counted, whatever became of it.
TEST(UseCount, IsThatOfAnyHandleWhereTheFactorisationFailed) {
  const MeshHandle system = construct(rightTriangle());
  ASSERT_NE(qelminfo(system.get()), 0) << "nothing is prescribed";
  EXPECT_EQ(usecount(system.get()), 1);
  const MeshHandle copy = duplicate(system);
  EXPECT_EQ(usecount(system.get()), 2);
}

TEST(Duplicate, SharesTheMeshAndSolvesAlike) {
  const Mesh mesh = openSurface(9, 8, 3).withBoundaryTagged();
  const Field values = mesh.sample([](Point p) { return p.x * p.y - p.z; });
  MeshHandle system = construct(mesh);
  const MeshHandle copy = duplicate(system);
  const double* original = nullptr;
  const double* shared = nullptr;
  qelverts(system.get(), &original);
  qelverts(copy.get(), &shared);
  EXPECT_EQ(original, shared);
  const Field expected = solve(system, values);
  system.reset();
  EXPECT_TRUE(sameBits(solve(copy, values), expected)) << "after the original was freed";
}

TEST(Duplicate, SurvivesFreeingInAnyOrder) {
  const Mesh mesh = gridMesh(6, 6).withBoundaryTagged();
  const Field values = mesh.sample([](Point p) { return p.x + 2 * p.y; });
  std::vector<int> order = {0, 1, 2, 3};
  do {
    std::vector<MeshHandle> handles;
    handles.push_back(construct(mesh));
    for (std::size_t i = 1; i < order.size(); ++i) handles.push_back(duplicate(handles[0]));
    for (std::size_t freed = 0; freed < order.size(); ++freed) {
      const int last = order.back();
      EXPECT_EQ(usecount(handles[static_cast<std::size_t>(last)].get()),
                static_cast<int>(order.size() - freed));
      handles[static_cast<std::size_t>(order[freed])].reset();
    }
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(Duplicate, CanBeMadeAndFreedOnManyThreads) {
  const Mesh mesh = gridMesh(12, 12).withBoundaryTagged();
  const Field values = mesh.sample([](Point p) { return p.x - p.y; });
  MeshHandle system = construct(mesh);
  const Field expected = solve(system, values);
  constexpr int kThreads = 4;
  constexpr int kRounds = 100;
  std::vector<int> failures(kThreads, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < kRounds; ++round) {
        const MeshHandle copy = duplicate(system);
        Field result(values.size());
        int status = -1;
        qelmsolveTagged(copy.get(), values.data(), result.data(), &status);
        if (status != 0 || result != expected) ++failures[static_cast<std::size_t>(t)];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, std::vector<int>(kThreads, 0));
  EXPECT_EQ(usecount(system.get()), 1);
}

TEST(Duplicate, MayOutliveItsOriginalOnAnotherThread) {
  for (int round = 0; round < 50; ++round) {
    MeshHandle system = construct(gridMesh(5, 5).withBoundaryTagged());
    MeshHandle copy = duplicate(system);
    std::thread other([handle = std::move(copy)]() mutable { handle.reset(); });
    system.reset();
    other.join();
  }
}

}  // namespace
}  // namespace qelm::test
