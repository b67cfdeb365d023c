// Ten thousand random meshes and clouds all the way through the library and through its twin:
// welded, constructed, solved, cut and written, with the same bits after each stage.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <span>
#include <string>

#include "qelm.h"
#include "support/handle.h"
#include "support/random.h"
#include "twin/twin.h"

namespace qelm::test {
namespace {

using twin::Doubles;
using twin::Ints;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The same words; which NaN it is, the order of two operands decides, and the compiler that.
testing::AssertionResult sameWords(std::span<const double> actual,
                                   std::span<const double> expected) {
  if (actual.size() != expected.size()) {
    return testing::AssertionFailure() << actual.size() << " numbers, not " << expected.size();
  }
  for (std::size_t i = 0; i < actual.size(); ++i) {
    const double a = actual[i], e = expected[i];
    if (std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(e)) continue;
    if (std::isnan(a) && std::isnan(e)) continue;
    return testing::AssertionFailure()
           << std::hexfloat << "number " << i << ": " << a << ", not " << e;
  }
  return testing::AssertionSuccess();
}

struct Case {
  Doubles vertices;
  Ints triangles;
  Ints tags;
  double tolerance;
};

template <class T, std::size_t kCount>
T oneOf(Random& random, const T (&values)[kCount]) {
  return values[uniformInt(random, 0, static_cast<int>(kCount) - 1)];
}

/// A grid whose vertices are moved a little and numbered at random.
void makeGrid(Random& random, int side, Case& mesh) {
  const std::vector<std::int32_t> number = permutation(random, side * side);
  mesh.vertices.resize(static_cast<std::size_t>(3 * side * side));
  const double jitter = oneOf(random, {0.0, 0.1, 0.7});
  for (int i = 0; i < side * side; ++i) {
    const auto first = static_cast<std::size_t>(3 * number[static_cast<std::size_t>(i)]);
    mesh.vertices[first] = i % side + jitter * uniform(random, -1, 1);
    mesh.vertices[first + 1] = i / side + jitter * uniform(random, -1, 1);
    mesh.vertices[first + 2] = jitter * uniform(random, -1, 1);
  }
  const auto add = [&](int a, int b, int c) {
    for (const int i : {a, b, c}) mesh.triangles.push_back(number[static_cast<std::size_t>(i)]);
  };
  for (int i = 0; i + side < side * side; ++i) {
    if (i % side == side - 1) continue;
    add(i, i + 1, i + side + 1);
    add(i, i + side + 1, i + side);
  }
}

/// Triangles between any vertices, now and then one that repeats a vertex.
void makeHeap(Random& random, int n, Case& mesh) {
  const bool isRound = uniformInt(random, 0, 2) == 0;
  for (int i = 0; i < 3 * n; ++i) {
    mesh.vertices.push_back(isRound ? oneOf(random, {0.0, -0.0, 1.0, -1.0, 2.0, 0.5})
                                    : uniform(random, -1, 1));
  }
  const int m = uniformInt(random, n / 2 + 1, 2 * n);
  for (int j = 0; j < m; ++j) {
    const int a = j < n ? j : uniformInt(random, 0, n - 1);
    const int b = (a + uniformInt(random, 1, n - 1)) % n;
    int c = (a + uniformInt(random, 1, n - 1)) % n;
    if (c == b && uniformInt(random, 0, 60) != 0) c = (std::max(a, b) + 1) % n;
    mesh.triangles.insert(mesh.triangles.end(), {a, b, c});
  }
}

/// Each triangle of a grid with vertices of its own.
void makeSoup(Random& random, int side, Case& mesh) {
  Case grid;
  makeGrid(random, side, grid);
  for (const int i : grid.triangles) {
    for (int k = 0; k < 3; ++k) {
      mesh.vertices.push_back(grid.vertices[static_cast<std::size_t>(3 * i + k)]);
    }
    mesh.triangles.push_back(static_cast<int>(mesh.triangles.size()));
  }
}

Case randomCase(Random& random, int number) {
  Case mesh;
  // Now and then one that is large enough to be factorised in blocks.
  const bool isLarge = number % 250 == 249;
  switch (uniformInt(random, 0, 2)) {
    case 0:
      makeGrid(random, isLarge ? 24 : uniformInt(random, 2, 6), mesh);
      break;
    case 1:
      makeHeap(random, isLarge ? 90 : uniformInt(random, 3, 16), mesh);
      break;
    default:
      makeSoup(random, isLarge ? 12 : uniformInt(random, 2, 4), mesh);
  }
  const double scale =
      uniformInt(random, 0, 2) == 0 ? oneOf(random, {1e150, 1e-150, 1e-3, 1e75, 1e-161}) : 1.0;
  for (double& x : mesh.vertices) x *= scale;
  if (uniformInt(random, 0, 9) == 0) {
    const int last = static_cast<int>(mesh.vertices.size()) - 1;
    mesh.vertices[static_cast<std::size_t>(uniformInt(random, 0, last))] =
        oneOf(random, {kInfinity, -kInfinity, std::nan(""), 1e300, -0.0});
  }
  if (uniformInt(random, 0, 3) == 0) {  // some vertices coincide
    for (std::size_t i = 3; i < mesh.vertices.size(); i += 3) {
      if (uniformInt(random, 0, 5) == 0) std::copy_n(&mesh.vertices[i - 3], 3, &mesh.vertices[i]);
    }
  }
  const bool isMostlyFree = uniformInt(random, 0, 4) != 0;
  for (std::size_t i = 0; i < mesh.vertices.size(); i += 3) {
    mesh.tags.push_back(isMostlyFree && uniformInt(random, 0, 3) != 0 ? oneOf(random, {0, 4, -1})
                                                                      : uniformInt(random, 1, 3));
  }
  mesh.tolerance = scale * oneOf(random, {0.0, 0.0, 1e-9, 1e-9, 0.3, 0.3, 1.0, 1.5, kInfinity});
  return mesh;
}

Doubles randomField(Random& random, std::size_t size) {
  Doubles field(size);
  const int kind = uniformInt(random, 0, 3);
  for (double& value : field) {
    value = kind == 0 ? oneOf(random, {0.0, -0.0, 1.0, 2.0}) : uniform(random, -1, 1);
    if (kind == 1 && uniformInt(random, 0, 9) == 0) {
      value = oneOf(random, {kInfinity, -kInfinity, std::nan(""), 1e300, -1e300});
    }
  }
  return field;
}

/// Welds, compares, and goes on with what is left.
void weldBoth(Case& mesh) {
  const int n = static_cast<int>(mesh.vertices.size() / 3);
  const int m = static_cast<int>(mesh.triangles.size() / 3);
  Doubles vertices(mesh.vertices.size());
  Ints triangles(mesh.triangles.size()), map(static_cast<std::size_t>(n));
  int kept = -1, keptTriangles = -1;
  ASSERT_EQ(qelmWeld(n, mesh.vertices.data(), m, mesh.triangles.data(), mesh.tolerance,
                     vertices.data(), triangles.data(), map.data(), &kept, &keptTriangles),
            0);
  const twin::Welded welded = twin::weld(mesh.vertices, mesh.triangles, mesh.tolerance);
  ASSERT_EQ(map, welded.map);
  vertices.resize(static_cast<std::size_t>(3 * kept));
  triangles.resize(static_cast<std::size_t>(3 * keptTriangles));
  ASSERT_TRUE(sameWords(vertices, welded.vertices));
  ASSERT_EQ(triangles, welded.triangles);
  mesh.vertices = vertices;
  mesh.triangles = triangles;
  Ints tags(static_cast<std::size_t>(kept));
  for (std::size_t i = map.size(); i-- > 0;) tags[static_cast<std::size_t>(map[i])] = mesh.tags[i];
  mesh.tags = tags;
}

/// Null if there is none, as the twin says as well.
MeshHandle constructBoth(const Case& mesh, twin::System& system) {
  MeshSystem* made = nullptr;
  int status = -1, tagged = -1;
  const int n = static_cast<int>(mesh.tags.size());
  const int m = static_cast<int>(mesh.triangles.size() / 3);
  EXPECT_EQ(qelmctorTagged(n, mesh.vertices.data(), m, mesh.triangles.data(), mesh.tags.data(),
                           &tagged, &status, &made),
            1);
  MeshHandle handle(made);
  if (m == 0) {
    EXPECT_EQ(status, 24);
    return nullptr;
  }
  twin::construct(mesh.vertices, mesh.triangles, mesh.tags, system);
  EXPECT_EQ(status, system.status);
  EXPECT_EQ(tagged, system.taggedCount);
  EXPECT_EQ(made == nullptr, system.status != 0);
  if (made == nullptr) return nullptr;
  EXPECT_EQ(qelminfo(made), static_cast<int>(system.factor.info()));
  const double* vertices = nullptr;
  const int* triangles = nullptr;
  EXPECT_EQ(qelverts(made, &vertices), n);
  EXPECT_EQ(qeltris(made, &triangles), n);
  EXPECT_TRUE(sameWords({vertices, mesh.vertices.size()}, system.vertices));
  EXPECT_TRUE(std::equal(system.triangles.begin(), system.triangles.end(), triangles));
  return handle;
}

/// A field in input order.
Doubles solveBoth(Random& random, const MeshSystem* handle, const twin::System& system) {
  const Doubles values = randomField(random, system.order.size());
  const Doubles load = randomField(random, system.order.size());
  Doubles field(values.size()), loaded(values.size());
  int status = -1;
  qelmsolveTagged(handle, values.data(), field.data(), &status);
  EXPECT_EQ(status, 0);
  qelmsolvePTagged(handle, values.data(), load.data(), loaded.data(), &status);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(sameWords(field, twin::solve(system, values, {})));
  EXPECT_TRUE(sameWords(loaded, twin::solve(system, values, load)));

  Doubles many, loads, results(3 * values.size());
  for (int k = 0; k < 3; ++k) {
    many.insert(many.end(), values.begin(), values.end());
    loads.insert(loads.end(), load.begin(), load.end());
  }
  qelmsolveManyTagged(handle, 3, many.data(), loads.data(), results.data(), &status);
  EXPECT_EQ(status, 0);
  const std::span<const double> third = std::span(results).last(values.size());
  EXPECT_TRUE(sameWords(third, loaded));
  return field;
}

void cutBoth(Random& random, const MeshSystem* handle, const twin::System& system,
             const Doubles& field) {
  Doubles levels;
  for (int k = uniformInt(random, 0, 3); k > 0; --k) {
    const int vertex = uniformInt(random, 0, static_cast<int>(field.size()) - 1);
    levels.push_back(uniformInt(random, 0, 1) == 0 ? field[static_cast<std::size_t>(vertex)]
                                                   : uniform(random, -1, 1));
  }
  IsoPointMatrix* points = nullptr;
  IsoEdgeMatrix* edges = nullptr;
  qelisoline(handle, field.data(), static_cast<int>(levels.size()), levels.data(), &points, &edges);
  const twin::Segments segments = twin::isolines(system, field, levels);
  EXPECT_TRUE(
      sameWords({points->data, static_cast<std::size_t>(3 * points->rows)}, segments.points));
  EXPECT_EQ(Ints(edges->data, edges->data + 2 * edges->rows), segments.edges);
  qelfreeisoline(points, edges);
}

void writeBoth(const MeshSystem* handle, const twin::System& system, const Doubles& field) {
  const std::string path = "twin";
  wobj(handle, field.data(), path.c_str());
  std::ifstream file(path + ".obj");  // as text: the ends of lines are the system's
  const std::string written{std::istreambuf_iterator<char>(file), {}};
  EXPECT_TRUE(written == twin::heatMap(system, field, path));
}

/// How many came how far, so that a change here cannot empty the test unnoticed.
struct Tally {
  int welded = 0;  ///< two vertices or more became one
  int refused = 0;
  int constructed = 0;
  int failed = 0;  ///< the factorisation
  int solved = 0;  ///< with all of the field finite, and something to solve for
  int notFinite = 0;
};

void goAllTheWay(Random& random, int number, Tally& tally) {
  Case mesh = randomCase(random, number);
  const std::size_t before = mesh.vertices.size();
  weldBoth(mesh);
  tally.welded += mesh.vertices.size() < before;
  if (testing::Test::HasFatalFailure()) return;
  twin::System system;
  MeshHandle handle = constructBoth(mesh, system);
  ++(handle == nullptr ? tally.refused : tally.constructed);
  if (handle == nullptr) return;
  if (uniformInt(random, 0, 3) == 0) {  // on with a copy
    MeshSystem* copy = nullptr;
    dupl(handle.get(), &copy);
    EXPECT_EQ(usecount(handle.get()), 2);
    handle.reset(copy);
    EXPECT_EQ(usecount(copy), 1);
  }
  const Doubles solved = solveBoth(random, handle.get(), system);
  const bool isFinite =
      std::all_of(solved.begin(), solved.end(), [](double x) { return std::isfinite(x); });
  tally.failed += qelminfo(handle.get()) != 0;
  tally.notFinite += !isFinite;
  tally.solved += isFinite && qelminfo(handle.get()) == 0 && system.taggedCount > 0 &&
                  system.taggedCount < static_cast<int>(system.order.size());
  Doubles field = randomField(random, solved.size());
  if (uniformInt(random, 0, 1) == 0) {  // what was solved, in the system's order
    for (std::size_t s = 0; s < field.size(); ++s) {
      field[s] = solved[static_cast<std::size_t>(system.order[s])];
    }
  }
  cutBoth(random, handle.get(), system, field);
  // Files take longer than all the rest.
  if (number % 10 == 0) writeBoth(handle.get(), system, field);
}

TEST(Twin, HasTheSameBitsAllTheWay) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  Tally tally;
  for (int number = 0; number < 10'000; ++number) {
    SCOPED_TRACE(number);
    goAllTheWay(random, number, tally);
    if (HasFailure()) return;
  }
  EXPECT_GE(tally.welded, 3000);
  EXPECT_GE(tally.refused, 1000);
  EXPECT_GE(tally.constructed, 5000);
  EXPECT_GE(tally.failed, 100);
  EXPECT_GE(tally.solved, 2000);
  EXPECT_GE(tally.notFinite, 1000);
}

}  // namespace
}  // namespace qelm::test
