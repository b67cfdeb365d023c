// A handle that frees itself, and calls on it that check their status.
#ifndef QELM_TESTS_SUPPORT_HANDLE_H
#define QELM_TESTS_SUPPORT_HANDLE_H

#include <gtest/gtest.h>

#include <memory>

#include "qelm.h"
#include "support/meshes.h"

namespace qelm::test {

struct HandleDeleter {
  void operator()(MeshSystem* h) const { qelmfree(h); }
};
using MeshHandle = std::unique_ptr<MeshSystem, HandleDeleter>;

/// What a constructor call left behind. Out-parameters start as values that no
/// call writes, so that "not written" can be seen.
struct Construction {
  static constexpr int kUnwritten = -777;
  MeshHandle handle;
  int status = kUnwritten;
  int taggedCount = kUnwritten;
  int returned = kUnwritten;
};

inline Construction tryConstruct(const Mesh& mesh) {
  Construction c;
  MeshSystem* raw = nullptr;
  c.returned =
      qelmctorTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                     mesh.triangles.data(), mesh.tags.data(), &c.taggedCount, &c.status, &raw);
  c.handle.reset(raw);
  return c;
}

inline MeshHandle construct(const Mesh& mesh) {
  Construction c = tryConstruct(mesh);
  EXPECT_EQ(c.status, QELM_STATUS_OK);
  EXPECT_NE(c.handle, nullptr);
  return std::move(c.handle);
}

inline MeshHandle duplicate(const MeshHandle& handle) {
  MeshSystem* copy = nullptr;
  dupl(handle.get(), &copy);
  EXPECT_NE(copy, nullptr);
  return MeshHandle(copy);
}

inline Field solve(const MeshHandle& system, const Field& values) {
  Field result(values.size(), -777.0);
  int status = Construction::kUnwritten;
  qelmsolveTagged(system.get(), values.data(), result.data(), &status);
  EXPECT_EQ(status, QELM_STATUS_OK);
  return result;
}

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_HANDLE_H
