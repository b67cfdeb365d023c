// One fuzzer for each format of mesh files; see mesh_file_fuzz.cpp.
#ifndef QELM_TESTS_FUZZ_MESH_FILE_FUZZ_H
#define QELM_TESTS_FUZZ_MESH_FILE_FUZZ_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "mesh/mesh.h"

namespace qelm::fuzz {

/// Reads data as the file `name`, and requires a good soup or a good message. Returns 0.
int fuzzMeshFile(const char* name, const std::uint8_t* data, std::size_t size);

/// Reads `bytes` as the file `name`. False if they are refused, with a good message.
bool readsAs(const char* name, const std::string& bytes, tool::PolygonSoup& soup);

/// Indices in range, what is written is read again with the same bits.
void requireGoodSoup(const tool::PolygonSoup& soup);

void requireFinite(const tool::PolygonSoup& soup);

}  // namespace qelm::fuzz

#endif  // QELM_TESTS_FUZZ_MESH_FILE_FUZZ_H
