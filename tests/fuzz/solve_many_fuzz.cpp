// Many solves at once, checked and unchecked, beside single ones and the plain form: the same bits,
// any NaN for any other.
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

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

/// Index of the first number that is not finite at vertices that are tagged, or are not; -1 if
/// none.
std::int64_t firstNotFinite(const MeshSystem& system, const std::vector<double>& fields,
                            bool tagged) {
  const auto n = static_cast<std::size_t>(system.vertexCount);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const bool isTagged = system.tags[i % n] >= 1 && system.tags[i % n] <= 3;
    if (isTagged == tagged && !std::isfinite(fields[i])) return static_cast<std::int64_t>(i);
  }
  return -1;
}

/// `results` are those of the unchecked solve.
void check(const MeshSystem& system, int count, const std::vector<double>& values,
           const std::vector<double>& loads, const std::vector<double>& results) {
  std::int64_t first = -1;
  int expected = QELM_STATUS_OK;
  if (count > 0 && qelminfo(&system) != 0) {
    expected = QELM_STATUS_NOT_FACTORISED;
  } else if ((first = firstNotFinite(system, values, true)) >= 0) {
    expected = QELM_STATUS_VALUE_NOT_FINITE;
  } else if ((first = firstNotFinite(system, loads, false)) >= 0) {
    expected = QELM_STATUS_LOAD_NOT_FINITE;
  } else if ((first = firstNotFinite(system, results, false)) >= 0) {
    expected = QELM_STATUS_FIELD_NOT_FINITE;
  }
  constexpr double kUntouched = -777;
  std::vector<double> checked(results.size(), kUntouched);
  std::int64_t found = -777;
  int status = -1;
  qelmsolveCheckedTagged(&system, count, values.data(), loads.empty() ? nullptr : loads.data(),
                         checked.data(), &found, &status);
  require(status == expected && found == first);
  const bool solved = status == QELM_STATUS_OK || status == QELM_STATUS_FIELD_NOT_FINITE;
  for (std::size_t i = 0; i < checked.size(); ++i)
    require(same(checked[i], solved ? results[i] : kUntouched));
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
  check(*system, count, values, loads, results);
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
