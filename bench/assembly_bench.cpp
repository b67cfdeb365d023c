// What construction costs besides the factorisation, beside the plain way through
// triplets and one full matrix, and Eigen's own compute. The argument is the
// number of grid columns and rows.
#include <benchmark/benchmark.h>

#include "interface/mesh_system.h"
#include "mesh/assembly.h"
#include "mesh/numbering.h"
#include "qelm.h"
#include "support/meshes.h"
#include "support/plain_assembly.h"
#include "support/random.h"

namespace {

using qelm::test::Mesh;

/// A curved, jittered grid; shuffled gives its vertices a random order.
Mesh benchMesh(const benchmark::State& state, bool shuffled) {
  const int side = static_cast<int>(state.range(0));
  const Mesh mesh = qelm::test::openSurface(side, side, 1).withBoundaryTagged();
  if (!shuffled) return mesh;
  qelm::test::Random random(1);
  return qelm::test::relabelled(mesh, qelm::test::permutation(random, mesh.vertexCount()));
}

MeshSystem* construct(const Mesh& mesh) {
  MeshSystem* system = nullptr;
  int status = 0;
  qelmctorTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                 mesh.triangles.data(), mesh.tags.data(), nullptr, &status, &system);
  return system;
}

/// Checks, renumbering and blocks, without the factorisation.
void assembly(benchmark::State& state, bool shuffled) {
  const Mesh mesh = benchMesh(state, shuffled);
  for (auto _ : state) {
    const qelm::VertexNumbering numbering = qelm::numberVertices(mesh.tags);
    const auto coordinates = qelm::reorderCoordinates(mesh.vertices, numbering);
    const auto triangles = qelm::renumberTriangles(mesh.triangles, numbering);
    const qelm::FreeRowBlocks blocks =
        qelm::assembleFreeRows(numbering.taggedCount, mesh.vertexCount(), coordinates, triangles);
    benchmark::DoNotOptimize(blocks.freeFree.valuePtr());
  }
}

void plainTriplets(benchmark::State& state, bool shuffled) {
  MeshSystem* system = construct(benchMesh(state, shuffled));
  for (auto _ : state) {
    const qelm::test::PlainBlocks blocks = qelm::test::plainAssembly(*system);
    benchmark::DoNotOptimize(blocks.freeFree.valuePtr());
  }
  qelmfree(system);
}

void bareEigenCompute(benchmark::State& state, bool shuffled) {
  MeshSystem* system = construct(benchMesh(state, shuffled));
  for (auto _ : state) {
    const qelm::FreeSolver solver(*system->freeFreeBlock);
    benchmark::DoNotOptimize(solver.info());
  }
  qelmfree(system);
}

}  // namespace

#define QELM_ASSEMBLY_CASE(function, order, shuffled) \
  BENCHMARK_CAPTURE(function, order, shuffled)->Arg(100)->Arg(316)->Unit(benchmark::kMillisecond)

QELM_ASSEMBLY_CASE(assembly, natural, false);
QELM_ASSEMBLY_CASE(plainTriplets, natural, false);
QELM_ASSEMBLY_CASE(bareEigenCompute, natural, false);
QELM_ASSEMBLY_CASE(assembly, shuffled, true);
QELM_ASSEMBLY_CASE(plainTriplets, shuffled, true);
QELM_ASSEMBLY_CASE(bareEigenCompute, shuffled, true);
