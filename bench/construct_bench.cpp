// Construction beside the plain way through triplets and one full matrix, Eigen's
// own compute on the same free-free block, and CHOLMOD's.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <utility>

#include "mesh/assembly.h"
#include "mesh/numbering.h"
#include "peers/cholmod.h"
#include "qelm.h"
#include "robust/flips.h"
#include "robust/robust_system.h"
#include "support/contender.h"
#include "support/plain_assembly.h"

namespace {

using qelm::SparseBlock;
using qelm::bench::Case;
using qelm::bench::Run;
using qelm::test::Mesh;

struct Work {
  Mesh mesh;
  MeshSystem reordered;  ///< the mesh alone
  SparseBlock freeFree;
  SparseBlock freeFixed;
};

/// Construction without the factorisation: numbers the vertices, assembles the blocks, and keeps in
/// `reordered` what a handle keeps of the mesh.
qelm::AssembledRows assemble(const Mesh& mesh, MeshSystem& reordered) {
  qelm::VertexNumbering numbering = qelm::numberVertices(mesh.tags);
  auto coordinates = qelm::reorderCoordinates(mesh.vertices, numbering);
  auto triangles = qelm::renumberTriangles(mesh.triangles, numbering);
  qelm::AssembledRows rows = qelm::assembleFreeRows(numbering.taggedCount, coordinates, triangles);
  if (rows.status != QELM_STATUS_OK) std::abort();
  reordered.fixedCount = numbering.taggedCount;
  reordered.vertexCount = mesh.vertexCount();
  reordered.vertices = std::make_shared<const std::vector<double>>(std::move(coordinates));
  reordered.triangles = std::make_shared<const std::vector<std::int32_t>>(std::move(triangles));
  reordered.vertexPlace = std::move(numbering.toSystem);
  reordered.vertexOrder = std::move(numbering.toInput);
  return rows;
}

std::shared_ptr<const Work> workOf(const Case& c) {
  return qelm::bench::sharedBetweenContenders<Work>(c, [](const Case& which) {
    Work work;
    work.mesh = makeMesh(which);
    qelm::AssembledRows rows = assemble(work.mesh, work.reordered);
    work.freeFree.swap(rows.blocks.freeFree);
    work.freeFixed.swap(rows.blocks.freeFixed);
    return work;
  });
}

Run whole(const Case& c) {
  return [work = workOf(c)] {
    const qelm::bench::SystemHandle system = qelm::bench::construct(work->mesh);
    return static_cast<std::size_t>(system->freeFreeBlock->nonZeros());
  };
}

/// Construction without the factorisation.
Run assembly(const Case& c) {
  return [work = workOf(c)] {
    MeshSystem reordered;
    return static_cast<std::size_t>(assemble(work->mesh, reordered).blocks.freeFree.nonZeros());
  };
}

/// Like assembly(), for robust construction, whose rows have no negative weight.
std::size_t assembleRobustly(const Mesh& mesh) {
  const qelm::VertexNumbering numbering = qelm::numberVertices(mesh.tags);
  const qelm::RobustRows robust = qelm::assembleRobustRows(
      numbering.taggedCount, qelm::reorderCoordinates(mesh.vertices, numbering),
      qelm::renumberTriangles(mesh.triangles, numbering),
      qelm::flipLimit(mesh.triangles.size() / 3));
  if (robust.rows.status != QELM_STATUS_OK) std::abort();
  return static_cast<std::size_t>(robust.rows.blocks.freeFree.nonZeros());
}

Run robustAssembly(const Case& c) {
  return [work = workOf(c)] { return assembleRobustly(work->mesh); };
}

/// Robust assembly of a sheared mesh. On a grid every diagonal is flipped: half a flip for each
/// triangle.
Run robustSheared(const Case& c) {
  Mesh mesh = makeMesh(c);
  for (std::size_t i = 0; i < mesh.vertices.size(); i += 3) {
    mesh.vertices[i] += 1.2 * mesh.vertices[i + 1];
  }
  return [mesh = std::move(mesh)] { return assembleRobustly(mesh); };
}

/// Only copies what a handle keeps of all this. Returns the number of triangles.
Run kept(const Case& c) {
  return [work = workOf(c)] {
    const std::vector<double> coordinates = *work->reordered.vertices;
    const std::vector<std::int32_t> triangles = *work->reordered.triangles;
    const std::vector<std::int32_t> place = work->mesh.tags;
    const std::vector<std::int32_t> order = work->mesh.tags;
    const SparseBlock freeFree = work->freeFree;
    const SparseBlock freeFixed = work->freeFixed;
    benchmark::DoNotOptimize(coordinates.data());
    benchmark::DoNotOptimize(triangles.data());
    benchmark::DoNotOptimize(place.data());
    benchmark::DoNotOptimize(order.data());
    benchmark::DoNotOptimize(freeFixed.valuePtr());
    return static_cast<std::size_t>(work->mesh.triangleCount());
  };
}

/// What construction would take, as qelmpredictTagged() says.
Run predicted(const Case& c) {
  return [work = workOf(c)] {
    const Mesh& mesh = work->mesh;
    QelmPrediction prediction = {};
    qelmpredictTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                      mesh.triangles.data(), mesh.tags.data(), 0, &prediction);
    return static_cast<std::size_t>(prediction.factorEntries);
  };
}

/// Only copies the free-free block, which compute() is given.
Run block(const Case& c) {
  return [work = workOf(c)] {
    const SparseBlock copy = work->freeFree;
    benchmark::DoNotOptimize(copy.valuePtr());
    return static_cast<std::size_t>(copy.nonZeros());
  };
}

/// The blocks of assembly() by the plain way, through triplets.
Run plainTriplets(const Case& c) {
  return [work = workOf(c)] {
    const Mesh& mesh = work->mesh;
    const qelm::VertexNumbering numbering = qelm::numberVertices(mesh.tags);
    const auto coordinates = qelm::reorderCoordinates(mesh.vertices, numbering);
    std::vector<std::int32_t> triangles(mesh.triangles.size());
    for (std::size_t j = 0; j < triangles.size(); ++j) {
      triangles[j] = numbering.toSystem[static_cast<std::size_t>(mesh.triangles[j])];
    }
    const qelm::test::PlainAssembly plain = qelm::test::plainAssembly(
        numbering.taggedCount, mesh.vertexCount(), coordinates, triangles);
    if (plain.status != QELM_STATUS_OK) std::abort();
    return static_cast<std::size_t>(plain.freeFree.nonZeros());
  };
}

template <class Solver>
Run compute(const Case& c) {
  return [work = workOf(c)] {
    const Solver solver(work->freeFree);
    return static_cast<std::size_t>(work->freeFree.nonZeros());
  };
}

/// Aborts unless the handle's factorisation has the bits of this one.
void expectSameBits(const qelm::FreeSolver& expected, const qelm::FreeSolver& actual) {
  const SparseBlock& a = actual.matrixL().nestedExpression();
  const SparseBlock& e = expected.matrixL().nestedExpression();
  const auto sameBytes = [](const auto* x, const auto* y, Eigen::Index count) {
    return std::memcmp(x, y, static_cast<std::size_t>(count) * sizeof *x) == 0;
  };
  const Eigen::VectorXd pivots = actual.vectorD();
  const Eigen::VectorXd expectedPivots = expected.vectorD();
  if (actual.info() == expected.info() && a.nonZeros() == e.nonZeros() &&
      sameBytes(a.outerIndexPtr(), e.outerIndexPtr(), a.cols() + 1) &&
      sameBytes(a.innerIndexPtr(), e.innerIndexPtr(), a.nonZeros()) &&
      sameBytes(a.valuePtr(), e.valuePtr(), a.nonZeros()) &&
      sameBytes(pivots.data(), expectedPivots.data(), pivots.size())) {
    return;
  }
  std::cerr << "construct: the factor differs from Eigen's\n";
  std::abort();
}

/// Eigen's own compute. Its first run is compared with what construction keeps, so that no
/// ratio is printed for results that differ.
Run computeAsTheHandle(const Case& c) {
  const auto work = workOf(c);
  expectSameBits(qelm::FreeSolver(work->freeFree), *qelm::bench::construct(work->mesh)->freeSolver);
  return compute<qelm::FreeSolver>(c);
}

/// The first part of Eigen's compute(): ordering, then the pattern of the factor.
Run eigenAnalysis(const Case& c) {
  return [work = workOf(c)] {
    qelm::FreeSolver solver;
    solver.analyzePattern(work->freeFree);
    return static_cast<std::size_t>(work->freeFree.nonZeros());
  };
}

/// The first part of Eigen's analyzePattern(): approximate minimum degree.
Run eigenOrdering(const Case& c) {
  return [work = workOf(c)] {
    const SparseBlock whole = work->freeFree.selfadjointView<Eigen::Lower>();
    Eigen::PermutationMatrix<Eigen::Dynamic, Eigen::Dynamic, int> order;
    Eigen::AMDOrdering<int>()(whole, order);
    return static_cast<std::size_t>(work->freeFree.nonZeros());
  };
}

}  // namespace

int main(int argumentCount, char** arguments) {
  using qelm::bench::addContender;
  addContender("construct", "qelm", whole);
  addContender("construct", "assembly", assembly);
  addContender("construct", "predicted", predicted);
  addContender("construct", "robust", robustAssembly);
  addContender("construct", "robust_sheared", robustSheared);
  addContender("construct", "block", block);
  addContender("construct", "kept", kept);
  addContender("construct", "plain", plainTriplets);
  addContender("construct", "eigen", computeAsTheHandle, qelm::bench::upTo(1'000'000));
  addContender("construct", "eigen_analysis", eigenAnalysis);
  addContender("construct", "eigen_ordering", eigenOrdering);
#if defined(QELM_HAVE_CHOLMOD)
  addContender("construct", "cholmod_simplicial", compute<qelm::bench::CholmodSimplicial>,
               qelm::bench::upTo(300'000));
  const auto upToAMillion = qelm::bench::upTo(1'000'000);
  addContender("construct", "cholmod_supernodal", compute<qelm::bench::CholmodSupernodal>,
               upToAMillion);
  addContender("construct", "cholmod_supernodal_own_order",
               compute<qelm::bench::CholmodSupernodalOwnOrder>, upToAMillion);
#endif
  return qelm::bench::runContenders(argumentCount, arguments);
}
