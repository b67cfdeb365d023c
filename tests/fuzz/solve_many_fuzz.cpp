// Many solves at once beside single ones and the plain form: the same bits, any NaN for
// any other.
#include <bit>
#include <cmath>
#include <cstddef>

#include "fuzz/input.h"
#include "fuzz/require.h"
#include "qelm.h"
#include "support/plain_solve.h"

namespace {

using qelm::fuzz::require;

bool same(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
         (std::isnan(a) && std::isnan(b));
}

void compare(const MeshSystem* system, int n, qelm::fuzz::Input& input) {
  const int count = input.takeInt(0, 40);
  const bool loaded = input.takeInt(0, 1) == 1;
  const auto size = static_cast<std::size_t>(n) * static_cast<std::size_t>(count);
  const std::vector<double> values = input.takeDoubles(size);
  const std::vector<double> loads = loaded ? input.takeDoubles(size) : std::vector<double>();
  std::vector<double> results(size);
  int status = -1;
  qelmsolveManyTagged(system, count, values.data(), loaded ? loads.data() : nullptr, results.data(),
                      &status);
  require(status == QELM_STATUS_OK);
  std::vector<double> single(static_cast<std::size_t>(n));
  const auto part = [&](const std::vector<double>& fields, std::size_t first) {
    const auto begin = fields.begin() + static_cast<std::ptrdiff_t>(first);
    return qelm::test::Field(begin, begin + n);
  };
  for (std::size_t first = 0; first < size; first += single.size()) {
    if (loaded) {
      qelmsolvePTagged(system, &values[first], &loads[first], single.data(), &status);
    } else {
      qelmsolveTagged(system, &values[first], single.data(), &status);
    }
    const qelm::test::Field plain = qelm::test::plainSolve(
        *system, part(values, first), loaded ? part(loads, first) : qelm::test::Field());
    for (std::size_t i = 0; i < single.size(); ++i) {
      require(same(results[first + i], plain[i]));
      require(same(single[i], plain[i]));
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::fuzz::Input input(data, size);
  const qelm::fuzz::FuzzMesh mesh = qelm::fuzz::takeMesh(input);
  MeshSystem* system = nullptr;
  int status = -1;
  qelmctorTagged(mesh.vertexCount, mesh.vertices.data(), mesh.triangleCount, mesh.triangles.data(),
                 mesh.tags.data(), nullptr, &status, &system);
  if (system != nullptr) compare(system, mesh.vertexCount, input);
  qelmfree(system);
  return 0;
}
