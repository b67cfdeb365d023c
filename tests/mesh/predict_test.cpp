// The prediction: its statuses, and its counts beside those of the factorisation that is made.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "interface/mesh_system.h"
#include "qelm.h"
#include "support/handle.h"
#include "support/meshes.h"
#include "support/random.h"

namespace qelm::test {
namespace {

struct Answer {
  int status = Construction::kUnwritten;
  QelmPrediction prediction = {-777, -777, -777, -777};
};

Answer predict(const Mesh& mesh, int robust = 0) {
  Answer answer;
  answer.status =
      qelmpredictTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                        mesh.triangles.data(), mesh.tags.data(), robust, &answer.prediction);
  return answer;
}

void expectNothing(const QelmPrediction& p) {
  EXPECT_EQ(p.factorEntries, 0);
  EXPECT_EQ(p.handleBytes, 0);
  EXPECT_EQ(p.peakBytes, 0);
  EXPECT_EQ(p.multiplications, 0);
}

/// Triangles between any vertices, each of which is in one at least.
Mesh randomTriangles(int vertexCount, int triangleCount, std::uint64_t seed) {
  Random random(seed);
  Mesh mesh;
  for (int i = 0; i < 3 * vertexCount; ++i) mesh.vertices.push_back(uniform(random, 0, 1));
  mesh.tags.assign(static_cast<std::size_t>(vertexCount), 0);
  mesh.tags[0] = mesh.tags[1] = 1;
  for (int t = 0; t < triangleCount; ++t) {
    const int a = t % vertexCount;
    const int b = (a + uniformInt(random, 1, vertexCount / 2 - 1)) % vertexCount;
    const int c = (a + uniformInt(random, vertexCount / 2, vertexCount - 1)) % vertexCount;
    mesh.triangles.insert(mesh.triangles.end(), {a, b, c});
  }
  return mesh;
}

void expectTheFactorThatIsMade(const Mesh& mesh) {
  const Answer answer = predict(mesh);
  ASSERT_EQ(answer.status, QELM_STATUS_OK);
  const MeshHandle system = construct(mesh);
  const SparseBlock& lower = system->freeSolver->matrixL().nestedExpression();
  EXPECT_EQ(answer.prediction.factorEntries, lower.nonZeros());
  double multiplications = 0;
  for (int j = 0; j < lower.cols(); ++j) {
    const double count = lower.outerIndexPtr()[j + 1] - lower.outerIndexPtr()[j];
    multiplications += count * (count + 1) / 2;
  }
  EXPECT_EQ(answer.prediction.multiplications, multiplications);
}

TEST(Predict, CountsTheFactorThatIsMade) {
  expectTheFactorThatIsMade(twoTriangles().withTagged({0}));
  expectTheFactorThatIsMade(fan(40).withTagged({3}));
  expectTheFactorThatIsMade(gridMesh(30, 20).withBoundaryTagged());
  expectTheFactorThatIsMade(torusMesh(90, 50).withTagged({7, 2000}));
  expectTheFactorThatIsMade(openSurface(150, 140, 1).withBoundaryTagged());
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    expectTheFactorThatIsMade(randomTriangles(60, 90, seed));
  }
  expectTheFactorThatIsMade(randomTriangles(1500, 3000, 1));
}

TEST(Predict, CountsTheFactorOfARobustSystem) {
  const Mesh mesh = openSurface(30, 25, 1).withBoundaryTagged().mapped([](Point p) {
    return Point{p.x + 5 * p.y, p.y, p.z};
  });
  const Answer robust = predict(mesh, 1);
  ASSERT_EQ(robust.status, QELM_STATUS_OK);
  MeshSystem* raw = nullptr;
  int status = Construction::kUnwritten;
  qelmctorRobustTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                       mesh.triangles.data(), mesh.tags.data(), nullptr, &status, &raw);
  const MeshHandle system(raw);
  EXPECT_EQ(robust.prediction.factorEntries,
            system->freeSolver->matrixL().nestedExpression().nonZeros());
  EXPECT_NE(robust.prediction.factorEntries, predict(mesh).prediction.factorEntries);

  Mesh infinite = mesh;
  infinite.vertices[7] = std::numeric_limits<double>::infinity();
  EXPECT_EQ(predict(infinite).status, QELM_STATUS_OK);
  EXPECT_EQ(predict(infinite, 1).status, 102);
  expectNothing(predict(infinite, 1).prediction);
}

struct Limited : Construction {
  QelmPrediction prediction = {-777, -777, -777, -777};
};

Limited constructWithin(std::int64_t mostBytes, const Mesh& mesh, int robust = 0) {
  Limited l;
  MeshSystem* raw = reinterpret_cast<MeshSystem*>(&l);
  l.returned = qelmctorLimitedTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                                     mesh.triangles.data(), mesh.tags.data(), robust, mostBytes,
                                     &l.prediction, &l.taggedCount, &l.status, &raw);
  l.handle.reset(raw);
  return l;
}

TEST(LimitedConstruction, BuildsTheSystemThatFits) {
  const Mesh mesh = openSurface(40, 30, 1).withBoundaryTagged();
  const QelmPrediction predicted = predict(mesh).prediction;
  const Limited fits = constructWithin(predicted.peakBytes, mesh);
  ASSERT_EQ(fits.status, QELM_STATUS_OK);
  EXPECT_EQ(fits.returned, 1);
  EXPECT_EQ(fits.prediction.peakBytes, predicted.peakBytes);
  EXPECT_EQ(fits.prediction.handleBytes, predicted.handleBytes);
  EXPECT_EQ(fits.prediction.factorEntries, predicted.factorEntries);
  EXPECT_EQ(fits.prediction.multiplications, predicted.multiplications);
  const Field values = mesh.sample([](Point p) { return p.x; });
  EXPECT_EQ(solve(fits.handle, values), solve(construct(mesh), values));
}

TEST(LimitedConstruction, RefusesWhatIsAByteTooLarge) {
  const Mesh mesh = openSurface(40, 30, 1).withBoundaryTagged();
  const std::int64_t peak = predict(mesh).prediction.peakBytes;
  for (const std::int64_t most : {peak - 1, std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
    const Limited refused = constructWithin(most, mesh);
    EXPECT_EQ(refused.status, QELM_STATUS_TOO_LARGE);
    EXPECT_EQ(refused.returned, 1);
    EXPECT_EQ(refused.handle, nullptr);
    EXPECT_EQ(refused.taggedCount, 136);
    EXPECT_EQ(refused.prediction.peakBytes, peak);
  }
}

TEST(LimitedConstruction, IsRobustWhereAskedFor) {
  const Mesh flat = twoTriangles().withTagged({0, 1, 2}).mapped([](Point) { return Point{}; });
  const Field values = {1, 1, 1, 1};
  EXPECT_TRUE(std::isnan(solve(constructWithin(INT64_MAX, flat).handle, values)[3])) << "no area";
  EXPECT_EQ(solve(constructWithin(INT64_MAX, flat, 1).handle, values)[3], 1);
}

TEST(LimitedConstruction, ReportsDefectsAsTheOthersDo) {
  EXPECT_EQ(constructWithin(INT64_MAX, Mesh{}).status, 1);
  Mesh repeated = twoTriangles();
  repeated.triangles[1] = repeated.triangles[0];
  EXPECT_EQ(constructWithin(0, repeated).status, 23);
  expectNothing(constructWithin(0, repeated).prediction);
}

TEST(LimitedConstruction, TakesANullPrediction) {
  const Mesh mesh = twoTriangles().withTagged({0});
  MeshSystem* raw = nullptr;
  int status = Construction::kUnwritten;
  qelmctorLimitedTagged(4, mesh.vertices.data(), 2, mesh.triangles.data(), mesh.tags.data(), 0,
                        INT64_MAX, nullptr, nullptr, &status, &raw);
  const MeshHandle system(raw);
  EXPECT_EQ(status, 0);
  EXPECT_NE(system, nullptr);
}

TEST(Predict, DoesNotDependOnWhereTheVerticesAre) {
  const Mesh mesh = openSurface(20, 20, 1).withBoundaryTagged();
  const Mesh flat = mesh.mapped([](Point) { return Point{0, 0, 0}; });
  EXPECT_EQ(predict(flat).status, QELM_STATUS_OK);
  EXPECT_EQ(predict(flat).prediction.factorEntries, predict(mesh).prediction.factorEntries);
}

TEST(Predict, CountsNothingWhereEveryVertexIsPrescribed) {
  const Answer answer = predict(gridMesh(4, 4).withEveryVertexTagged());
  EXPECT_EQ(answer.status, QELM_STATUS_OK);
  EXPECT_EQ(answer.prediction.factorEntries, 0);
  EXPECT_EQ(answer.prediction.multiplications, 0);
  EXPECT_GT(answer.prediction.handleBytes, 0);
}

TEST(Predict, AnswersTheStatusOfTheFirstDefect) {
  const Mesh good = twoTriangles();
  const double* const xyz = good.vertices.data();
  const int* const corners = good.triangles.data();
  const int* const tags = good.tags.data();
  QelmPrediction p = {-777, -777, -777, -777};
  const auto expectStatus = [&](int status, int answered) {
    EXPECT_EQ(answered, status);
    expectNothing(p);
    p = {-777, -777, -777, -777};
  };
  expectStatus(1, qelmpredictTagged(0, nullptr, 0, nullptr, nullptr, 0, &p));
  expectStatus(24, qelmpredictTagged(4, nullptr, 0, nullptr, nullptr, 0, &p));
  expectStatus(25, qelmpredictTagged(4, nullptr, 2, corners, tags, 0, &p));
  expectStatus(25, qelmpredictTagged(4, xyz, 2, nullptr, tags, 0, &p));
  expectStatus(25, qelmpredictTagged(4, xyz, 2, corners, nullptr, 0, &p));
  for (const int bad : {-1, 4, INT32_MIN, INT32_MAX}) {
    const std::vector<int> beyond = {0, 0, 1, 0, 2, bad};  // a repeat besides
    expectStatus(101, qelmpredictTagged(4, xyz, 2, beyond.data(), tags, 0, &p));
  }
  const std::vector<int> repeated = {0, 1, 1, 0, 1, 2};  // 3 is unused besides
  expectStatus(23, qelmpredictTagged(4, xyz, 2, repeated.data(), tags, 0, &p));
  expectStatus(24, qelmpredictTagged(4, xyz, 1, corners, tags, 0, &p));
}

TEST(Predict, TakesANullPrediction) {
  const Mesh mesh = twoTriangles();
  EXPECT_EQ(qelmpredictTagged(4, mesh.vertices.data(), 2, mesh.triangles.data(), mesh.tags.data(),
                              0, nullptr),
            0);
}

}  // namespace
}  // namespace qelm::test
