// Vertices on sides that do not name them.
#include "repair/t_joints.h"

#include <gtest/gtest.h>

#include <vector>

#include "mesh/boundary.h"

namespace {

using qelm::tool::boundaryLoops;
using qelm::tool::closeTJoints;
using qelm::tool::Mesh;

constexpr double kTolerance = 1e-6;

TEST(TJoints, SetsVerticesIntoTheSideThatPassesThem) {
  // The example of the header: below y = 0 one triangle, above it three at the vertices 3 and 4.
  Mesh mesh{{0, 0, 0, 3, 0, 0, 1, -2, 0, 1, 0, 0, 2, 0, 0, 1, 2, 0},
            {1, 0, 2, 0, 3, 5, 3, 4, 5, 4, 1, 5},
            {}};
  ASSERT_EQ(boundaryLoops(mesh).size(), 2U);
  EXPECT_EQ(closeTJoints(mesh, kTolerance), 2);
  EXPECT_EQ(boundaryLoops(mesh).size(), 1U);
  EXPECT_EQ(mesh.triangles, (std::vector<int>{1, 4, 2, 0, 3, 5, 3, 4, 5, 4, 1, 5,  //
                                              4, 3, 2, 3, 0, 2}));
}

TEST(TJoints, SplitsATriangleOnAllItsSides) {
  // The middles of the sides of (0, 1, 2) belong to three triangles outside.
  Mesh mesh{{0, 0, 0, 4, 0, 0, 0, 4, 0, 2, 0, 0, 2, 2, 0, 0, 2, 0, 4, -4, 0, 9, 9, 0, -4, 4, 0},
            {0, 1, 2, 3, 0, 6, 1, 3, 6, 4, 1, 7, 2, 4, 7, 5, 2, 8, 0, 5, 8},
            {}};
  EXPECT_EQ(closeTJoints(mesh, kTolerance), 3);
  EXPECT_EQ(mesh.triangleCount(), 4 + 6);
  EXPECT_EQ(boundaryLoops(mesh).size(), 1U);
  EXPECT_EQ(closeTJoints(mesh, kTolerance), 0);
}

TEST(TJoints, LeavesWhatOnlyComesNear) {
  // Vertex 3 is a little more than the tolerance below the side; 6 lies on its continuation.
  Mesh mesh{
      {0, 0, 0, 3, 0, 0, 1, 2, 0, 1, -2e-6, 0, 0, -2, 0, 2, -2, 0, 4, 0, 0, 5, 1, 0, 5, -1, 0},
      {0, 1, 2, 3, 4, 5, 6, 8, 7},
      {}};
  EXPECT_EQ(closeTJoints(mesh, kTolerance), 0);
  EXPECT_EQ(closeTJoints(mesh, 3e-6), 1);
}

}  // namespace
