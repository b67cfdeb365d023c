// Files as a.gltf.
#include <cstddef>
#include <cstdint>

#include "fuzz/mesh_file_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::tool::PolygonSoup soup;
  if (qelm::fuzz::readsAs("a.gltf", std::string(data, data + size), soup))
    qelm::fuzz::requireGoodSoup(soup);
  return 0;
}
