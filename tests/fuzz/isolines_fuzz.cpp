// Isolines of any arrays whose indices are in range, constructed or not, whole or
// too short: the bits of the plain form.
#include <memory>

#include "fuzz/input.h"
#include "fuzz/require.h"
#include "interface/mesh_system.h"
#include "isolines/plain_isolines.h"
#include "qelm.h"

namespace {

using qelm::fuzz::require;

template <class T>
void requireSameBits(const T* actual, const std::vector<T>& expected) {
  require((actual == nullptr) == expected.empty());
  if (actual == nullptr) return;
  require(std::memcmp(actual, expected.data(), expected.size() * sizeof(T)) == 0);
}

MeshSystem takeArrays(qelm::fuzz::Input& input) {
  const int n = input.takeInt(0, 20);
  const int stored = n == 0 ? 0 : input.takeInt(0, 6 * n);
  MeshSystem system;
  system.vertexCount = n;
  system.triangles = std::make_shared<const std::vector<std::int32_t>>(
      input.takeInts(static_cast<std::size_t>(stored), 0, n - 1));
  system.vertices = std::make_shared<const std::vector<double>>(
      input.takeDoubles(3 * static_cast<std::size_t>(n)));
  return system;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::fuzz::Input input(data, size);
  const int levelCount = input.takeInt(0, 40);
  const std::vector<double> levels = input.takeDoubles(static_cast<std::size_t>(levelCount));
  const MeshSystem system = takeArrays(input);
  const std::vector<double> field = input.takeDoubles(system.vertices->size() / 3);

  IsoPointMatrix* points = nullptr;
  IsoEdgeMatrix* edges = nullptr;
  qelisoline(&system, field.data(), levelCount, levels.data(), &points, &edges);
  const qelm::test::PlainIsolines plain = qelm::test::plainIsolines(system, field, levels);
  require(points->cols == 3 && edges->cols == 2 && points->rows == 2 * edges->rows);
  require(static_cast<std::size_t>(2 * edges->rows) == plain.edges.size());
  requireSameBits(points->data, plain.points);
  requireSameBits(edges->data, plain.edges);
  qelfreeisoline(points, edges);
  return 0;
}
