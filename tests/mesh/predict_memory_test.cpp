// The bytes that are predicted beside those that construction asks of the heap.
#include <gtest/gtest.h>

#include "qelm.h"
#include "support/failing_heap.h"
#include "support/meshes.h"

namespace qelm::test {
namespace {

/// To within what the small lists make.
void expectBytes(const Mesh& mesh, double smallLists) {
  QelmPrediction predicted = {};
  ASSERT_EQ(qelmpredictTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                              mesh.triangles.data(), mesh.tags.data(), 0, &predicted),
            0);
  MeshSystem* handle = nullptr;
  int status = -777;
  const FailingHeap heap(0, HeapFailure::once);
  qelmctorTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                 mesh.triangles.data(), mesh.tags.data(), nullptr, &status, &handle);
  const auto kept = static_cast<double>(heap.liveBytes());
  const auto peak = static_cast<double>(heap.peakBytes());
  qelmfree(handle);
  EXPECT_EQ(status, 0);
  EXPECT_NEAR(static_cast<double>(predicted.handleBytes), kept, 2000);
  EXPECT_NEAR(static_cast<double>(predicted.peakBytes) / peak, 1.0, smallLists);
}

/// A torus of which every third vertex is free, and no two of these share an edge.
Mesh withLonelyFreeVertices(int size) {
  Mesh mesh = torusMesh(size, size);
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    mesh.tags[static_cast<std::size_t>(v)] = (v / size + v % size) % 3 == 0 ? 0 : 1;
  }
  return mesh;
}

TEST(PredictMemory, SaysWhatConstructionAsksFor) {
  expectBytes(openSurface(60, 50, 1).withBoundaryTagged(), 0.05);       // Eigen's loop
  expectBytes(torusMesh(150, 140).withTagged({7, 2000}), 0.01);         // blocks
  expectBytes(openSurface(220, 200, 1).withBoundaryTagged(), 0.01);     // larger ones
  expectBytes(openSurface(120, 100, 1).withEveryVertexTagged(), 0.01);  // no factor
  expectBytes(withLonelyFreeVertices(150), 0.01);                       // assembly takes the most
  expectBytes(gridMesh(3000, 2).withTagged({0}), 0.03);                 // hardly any fill
}

}  // namespace
}  // namespace qelm::test
