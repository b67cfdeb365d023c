// Heat maps of any arrays whose indices are in range, written to memory: the bytes
// of the plain form.
#include <memory>
#include <sstream>

#include "export/heat_map.h"
#include "export/plain_heat_map.h"
#include "fuzz/input.h"
#include "fuzz/require.h"
#include "interface/mesh_system.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::fuzz::Input input(data, size);
  const auto n = static_cast<std::size_t>(input.takeInt(0, 40));
  const auto m = static_cast<std::size_t>(n == 0 ? 0 : input.takeInt(0, 60));
  MeshSystem system;
  system.triangles = std::make_shared<const std::vector<std::int32_t>>(
      input.takeInts(3 * m, 0, static_cast<int>(n) - 1));
  system.vertices = std::make_shared<const std::vector<double>>(input.takeDoubles(3 * n));
  const std::vector<double> field = input.takeDoubles(n);

  std::ostringstream written;
  std::ostringstream plain;
  qelm::writeObj(written, {*system.vertices, *system.triangles, field}, "path");
  qelm::test::plainObj(plain, system, field, "path");
  qelm::fuzz::require(written.str() == plain.str());
  return 0;
}
