// 3MF files.
#include "fuzz/mesh_file_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return qelm::fuzz::fuzzMeshFile("a.3mf", data, size);
}
