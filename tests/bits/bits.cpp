// Prints what the bit-exact functions give for a fixed workload, as one 64-bit word a
// line: "NAME word". Every compiler, level of optimisation and system must print the
// same; tests/bits/expected.txt has it.
//
// Only the public header, and no function of the mathematical library: those differ
// between systems.
#include <bit>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "qelm.h"

namespace {

/// FNV-1a over 64-bit words.
class Hash {
 public:
  void add(std::uint64_t word) {
    for (int k = 0; k < 8; ++k) {
      state_ = (state_ ^ ((word >> (8 * k)) & 0xff)) * 0x100000001b3U;
    }
  }
  void add(double number) {
    // The sign and payload of a NaN are not promised.
    add(number != number ? 0x7ff8000000000000U : std::bit_cast<std::uint64_t>(number));
  }
  void add(float number) { add(static_cast<std::uint64_t>(std::bit_cast<std::uint32_t>(number))); }
  void add(int number) { add(static_cast<std::uint64_t>(static_cast<std::int64_t>(number))); }

  void print(const char* name) const { std::printf("%s %016" PRIx64 "\n", name, state_); }

 private:
  std::uint64_t state_ = 0xcbf29ce484222325U;
};

/// The same numbers everywhere: the generator's words are fixed by the standard.
class Numbers {
 public:
  explicit Numbers(std::uint64_t seed) : words_(seed) {}

  double within(double low, double high) {
    return low + (high - low) * (static_cast<double>(words_() >> 11) * 0x1p-53);
  }
  int below(int count) { return static_cast<int>(words_() % static_cast<std::uint64_t>(count)); }

 private:
  std::mt19937_64 words_;
};

struct Mesh {
  std::vector<double> vertices;
  std::vector<int> triangles;
  std::vector<int> tags;

  int vertexCount() const { return static_cast<int>(tags.size()); }
  int triangleCount() const { return static_cast<int>(triangles.size() / 3); }
};

/// A bumpy sheet, irregular, with every fifth vertex tagged.
Mesh sheet(int columns, int rows, std::uint64_t seed) {
  Numbers numbers(seed);
  Mesh mesh;
  for (int i = 0; i < columns * rows; ++i) {
    const double x = i % columns + numbers.within(-0.3, 0.3);
    const double y = i / columns + numbers.within(-0.3, 0.3);
    for (const double c : {x, y, x * y / 40 + numbers.within(-0.2, 0.2)})
      mesh.vertices.push_back(c);
    mesh.tags.push_back(i % 5 == 0 ? 1 + i % 3 : numbers.below(2) * 4);
  }
  for (int y = 0; y + 1 < rows; ++y) {
    for (int x = 0; x + 1 < columns; ++x) {
      const int a = y * columns + x;
      for (const int c : {a, a + 1, a + columns + 1, a, a + columns + 1, a + columns}) {
        mesh.triangles.push_back(c);
      }
    }
  }
  return mesh;
}

MeshSystem* build(const Mesh& mesh) {
  MeshSystem* system = nullptr;
  int status = -1;
  qelmctorTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                 mesh.triangles.data(), mesh.tags.data(), nullptr, &status, &system);
  return system;
}

void codec() {
  Hash hash;
  for (int value = -3; value < 65540; ++value) {
    float x = 7, y = 7, z = 7;
    hash.add(encode_integer_to_sphere(value, &x, &y, &z));
    for (const float c : {x, y, z}) hash.add(c);
    hash.add(decode_integer_from_sphere(x, y, z));
    hash.add(decode_integer_from_sphere(-x, -y, -z));
  }
  Numbers numbers(1);
  for (int k = 0; k < 100000; ++k) {
    const auto word = static_cast<std::uint32_t>(numbers.below(0x7fffffff)) * 2U + (k & 1);
    const float any = std::bit_cast<float>(word);
    const auto small = static_cast<float>(numbers.within(-1, 1));
    hash.add(decode_integer_from_sphere(any, small, small));
    hash.add(decode_integer_from_sphere(small, any, -1));
  }
  hash.print("codec");
}

void weld() {
  Hash hash;
  Numbers numbers(2);
  for (const double tolerance : {0.0, 0.01, 0.0625, 0.4}) {
    const int n = 4000;
    std::vector<double> vertices;
    std::vector<int> triangles;
    for (int i = 0; i < 3 * n; ++i)
      vertices.push_back(numbers.below(65) / 16.0 + (i % 7 ? 0 : numbers.within(0, 0.02)));
    for (int i = 0; i < 3 * n; ++i) triangles.push_back(numbers.below(n));
    std::vector<int> map(static_cast<std::size_t>(n));
    int vertexCount = 0, triangleCount = 0;
    qelmWeld(n, vertices.data(), n, triangles.data(), tolerance, vertices.data(), triangles.data(),
             map.data(), &vertexCount, &triangleCount);
    hash.add(vertexCount);
    hash.add(triangleCount);
    for (int i = 0; i < 3 * vertexCount; ++i) hash.add(vertices[static_cast<std::size_t>(i)]);
    for (int i = 0; i < 3 * triangleCount; ++i) hash.add(triangles[static_cast<std::size_t>(i)]);
    for (const int v : map) hash.add(v);
  }
  hash.print("weld");
}

void numbering() {
  Hash hash;
  const Mesh mesh = sheet(40, 30, 3);
  MeshSystem* system = build(mesh);
  const double* coordinates = nullptr;
  const int* indices = nullptr;
  hash.add(qelverts(system, &coordinates));
  hash.add(qeltris(system, &indices));
  for (std::size_t i = 0; i < mesh.vertices.size(); ++i) hash.add(coordinates[i]);
  for (std::size_t i = 0; i < mesh.triangles.size(); ++i) hash.add(indices[i]);
  qelmfree(system);
  hash.print("numbering");
}

std::vector<double> field(const Mesh& mesh, std::uint64_t seed) {
  Numbers numbers(seed);
  std::vector<double> values;
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    const int kind = numbers.below(40);
    values.push_back(kind == 0   ? std::numeric_limits<double>::quiet_NaN()
                     : kind == 1 ? std::numeric_limits<double>::infinity()
                     : kind < 12 ? numbers.below(9) / 8.0
                                 : numbers.within(0, 1));
  }
  return values;
}

const std::vector<double> kLevels = {0.5, 0.1, 0.9, 0.25, 0.3333333333333333, 1.0, 0.0, 2.0};

void isolines() {
  Hash hash;
  const Mesh mesh = sheet(40, 30, 4);
  MeshSystem* system = build(mesh);
  const std::vector<double> values = field(mesh, 5);
  IsoPointMatrix* points = nullptr;
  IsoEdgeMatrix* edges = nullptr;
  qelisoline(system, values.data(), static_cast<int>(kLevels.size()), kLevels.data(), &points,
             &edges);
  for (std::int64_t i = 0; i < points->rows * points->cols; ++i) hash.add(points->data[i]);
  for (std::int64_t i = 0; i < edges->rows * edges->cols; ++i) hash.add(edges->data[i]);
  qelfreeisoline(points, edges);
  qelmfree(system);
  hash.print("isolines");
}

void curves() {
  Hash hash;
  const Mesh mesh = sheet(40, 30, 6);
  MeshSystem* system = build(mesh);
  const std::vector<double> values = field(mesh, 7);
  QelmCurves* cut = nullptr;
  int status = -1;
  qelmcurvesTagged(system, values.data(), static_cast<int>(kLevels.size()), kLevels.data(), &cut,
                   &status);
  hash.add(status);
  for (std::int64_t i = 0; i < 3 * cut->pointCount; ++i) hash.add(cut->points[i]);
  for (std::int64_t i = 0; i < cut->curveCount; ++i) {
    hash.add(static_cast<std::uint64_t>(cut->starts[i]));
    hash.add(cut->levels[i]);
    hash.add(cut->closed[i]);
  }
  qelmfreecurves(cut);
  qelmfree(system);
  hash.print("curves");
}

void check() {
  Hash hash;
  for (std::uint64_t seed = 8; seed < 28; ++seed) {
    const Mesh mesh = sheet(12, 9, seed);
    QelmMeshReport report;
    hash.add(qelmcheckTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                             mesh.triangles.data(), mesh.tags.data(), &report));
    std::uint64_t words[sizeof report / 8];
    std::memcpy(words, &report, sizeof report);
    for (const std::uint64_t word : words) hash.add(word);
  }
  hash.print("check");
}

/// Line ends are those of the system; all else is the same.
void addFile(Hash& hash, const char* name) {
  std::ifstream file(name, std::ios::binary);
  for (std::istreambuf_iterator<char> at(file), end; at != end; ++at) {
    if (*at != '\r') hash.add(static_cast<int>(static_cast<unsigned char>(*at)));
  }
}

void heatMap() {
  Hash hash;
  const Mesh mesh = sheet(30, 20, 30);
  MeshSystem* system = build(mesh);
  Numbers numbers(31);
  std::vector<double> values;
  for (int i = 0; i < mesh.vertexCount(); ++i) values.push_back(numbers.within(-2, 7));
  wobj(system, values.data(), "bits");
  addFile(hash, "bits.obj");
  addFile(hash, "bits.mtl");
  std::remove("bits.obj");
  std::remove("bits.mtl");
  qelmfree(system);
  hash.print("heat_map");
}

/// The ordering, the factorisation and both substitutions, on a mesh whose factor has
/// dense columns and on one without.
void fields() {
  Hash hash;
  for (const int across : {12, 90}) {
    const Mesh mesh = sheet(across, across - 3, 40);
    MeshSystem* system = build(mesh);
    hash.add(qelminfo(system));
    const int n = mesh.vertexCount();
    Numbers numbers(41);
    std::vector<double> values, loads, results(static_cast<std::size_t>(5 * n));
    for (int i = 0; i < 5 * n; ++i) {
      values.push_back(numbers.within(-2, 7));
      loads.push_back(numbers.below(3) == 0 ? numbers.within(-1, 1) : 0);
    }
    int status = -1;
    for (const double* load : {static_cast<const double*>(nullptr), std::as_const(loads).data()}) {
      qelmsolveManyTagged(system, 5, values.data(), load, results.data(), &status);
      hash.add(status);
      for (const double value : results) hash.add(value);
    }
    qelmsolveTagged(system, values.data(), results.data(), &status);
    for (int i = 0; i < n; ++i) hash.add(results[static_cast<std::size_t>(i)]);
    qelmfree(system);
  }
  hash.print("fields");
}

/// A sheet with obtuse triangles, slivers, triangles without area, and edges of three.
Mesh badSheet(std::uint64_t seed) {
  Mesh mesh = sheet(12, 9, seed);
  const double thin = seed % 3 == 0 ? 1e-9 : 1;
  for (std::size_t i = 0; i < mesh.vertices.size(); i += 3) {
    mesh.vertices[i] += 3 * mesh.vertices[i + 1];
    mesh.vertices[i + 1] *= thin;
    mesh.vertices[i + 2] *= thin;
  }
  mesh.triangles.insert(mesh.triangles.end(), {0, 1, 40, 40, 1, 77});
  if (seed % 4 == 0) {
    for (std::size_t c = 0; c < 3; ++c) mesh.vertices[3 * 30 + c] = mesh.vertices[3 * 31 + c];
  }
  return mesh;
}

/// The matrix cannot be read, but one prescribed value of 1 at a time shows a column of it.
void robust() {
  Hash hash;
  for (std::uint64_t seed = 40; seed < 60; ++seed) {
    const Mesh mesh = badSheet(seed);
    QelmRobustReport report;
    hash.add(qelmcheckRobustTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                                   mesh.triangles.data(), mesh.tags.data(), &report));
    for (const std::int64_t count : {report.changed, report.sheets, report.flatTriangles,
                                     report.notDelaunayEdges, report.flips}) {
      hash.add(static_cast<std::uint64_t>(count));
    }
    MeshSystem* system = nullptr;
    int status = -1;
    qelmctorRobustTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                         mesh.triangles.data(), mesh.tags.data(), nullptr, &status, &system);
    std::vector<double> values(mesh.tags.size()), result(mesh.tags.size());
    for (std::size_t one = 0; one < values.size(); ++one) {
      values.assign(values.size(), 0.0);
      values[one] = 1;
      qelmsolveTagged(system, values.data(), result.data(), &status);
      for (const double u : result) hash.add(u);
    }
    qelmfree(system);
  }
  hash.print("robust");
}

}  // namespace

int main() {
  codec();
  weld();
  numbering();
  isolines();
  curves();
  check();
  heatMap();
  fields();
  robust();
  return 0;
}
