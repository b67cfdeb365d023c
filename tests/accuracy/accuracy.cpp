// Measures how exact the fields are and prints it as the tables of docs/accuracy.md.
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "interface/mesh_system.h"
#include "qelm.h"
#include "robust/robust_of.h"
#include "support/analytic.h"
#include "support/handle.h"
#include "support/meshes.h"

namespace qelm::test {
namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

Field solveLoaded(const MeshHandle& system, const Field& values, const Field& load) {
  Field result(values.size());
  int status = -1;
  qelmsolvePTagged(system.get(), values.data(), load.data(), result.data(), &status);
  return result;
}

MeshHandle built(const Mesh& mesh) { return tryConstruct(mesh).handle; }

QelmMeshReport reportOf(const Mesh& mesh, int& code) {
  QelmMeshReport report;
  code = qelmcheckTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                         mesh.triangles.data(), mesh.tags.data(), &report);
  return report;
}

/// "1.23e-04 (2.00)": an error and its order, log2(coarser / error), where `coarser` is the error
/// at half the resolution; the error alone if `coarser` is 0.
std::string withOrder(double error, double coarser) {
  char text[64];
  if (coarser > 0) {
    std::snprintf(text, sizeof text, "%.2e (%.2f)", error, std::log2(coarser / error));
  } else {
    std::snprintf(text, sizeof text, "%.2e", error);
  }
  return text;
}

void harmonicFields() {
  std::puts("## Harmonic fields\n");
  std::puts(
      "Largest error at a vertex; in brackets the order, the binary logarithm of the quotient");
  std::puts("of two successive errors. Exact fields of order 1 between prescribed rims.\n");
  std::puts("| vertices across | annulus | sphere zone | catenoid |\n| --: | --: | --: | --: |");
  std::vector<double> coarser(3, 0.0);
  for (int resolution = 8; resolution <= 128; resolution *= 2) {
    std::printf("| %d |", resolution + 1);
    const std::vector<AnalyticCase> cases = analyticCases(resolution);
    for (std::size_t k = 0; k < cases.size(); ++k) {
      const double error =
          largestError(solve(built(cases[k].mesh), cases[k].exact), cases[k].exact);
      std::printf(" %s |", withOrder(error, coarser[k]).c_str());
      coarser[k] = error;
    }
    std::puts("");
  }
}

/// The load of a function f: at each vertex f times a third of the area of its triangles.
Field lumpedLoad(const Mesh& mesh, const Field& f) {
  Field load(f.size(), 0.0);
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto* c = &mesh.triangles[3 * static_cast<std::size_t>(t)];
    const Point p = mesh.point(c[0]), q = mesh.point(c[1]), r = mesh.point(c[2]);
    const double ux = q.x - p.x, uy = q.y - p.y, uz = q.z - p.z;
    const double vx = r.x - p.x, vy = r.y - p.y, vz = r.z - p.z;
    const double nx = uy * vz - uz * vy, ny = uz * vx - ux * vz, nz = ux * vy - uy * vx;
    const double third = std::sqrt(nx * nx + ny * ny + nz * nz) / 6;
    for (int k = 0; k < 3; ++k) {
      const auto v = static_cast<std::size_t>(c[k]);
      load[v] += third * f[v];
    }
  }
  return load;
}

double squareError(int cells) {
  const double pi = std::numbers::pi;
  const auto wave = [pi](Point p) { return std::sin(pi * p.x) * std::sin(2 * pi * p.y); };
  const Mesh mesh = gridMesh(cells + 1, cells + 1).withBoundaryTagged();
  const Field exact = mesh.sample([&](Point p) { return wave(p) + p.x; });
  const Field f = mesh.sample([&](Point p) { return -5 * pi * pi * wave(p); });
  return largestError(solveLoaded(built(mesh), exact, lumpedLoad(mesh, f)), exact);
}

/// u = z + x y between two polar caps: spherical harmonics of degree 1 and 2, so that
/// laplace(u) = -2 z - 6 x y.
double sphereError(int levels) {
  Mesh mesh = sphereMesh(levels);
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    mesh.tags[static_cast<std::size_t>(v)] = std::fabs(mesh.point(v).z) > 0.8 ? 1 : 0;
  }
  const Field exact = mesh.sample([](Point p) { return p.z + p.x * p.y; });
  const Field f = mesh.sample([](Point p) { return -2 * p.z - 6 * p.x * p.y; });
  return largestError(solveLoaded(built(mesh), exact, lumpedLoad(mesh, f)), exact);
}

void poissonFields() {
  std::puts("\n## Poisson's equation\n");
  std::puts(
      "The same with a load: on the unit square with its boundary held, and on the unit sphere");
  std::puts(
      "between two polar caps (an icosahedron, its triangles divided in four again and again).\n");
  std::puts("| cells across the square | error | divisions of the sphere | error |");
  std::puts("| --: | --: | --: | --: |");
  double square = 0, sphere = 0;
  for (int step = 0; step < 5; ++step) {
    const double squareNow = squareError(8 << step);
    const double sphereNow = sphereError(2 + step);
    std::printf("| %d | %s | %d | %s |\n", 8 << step, withOrder(squareNow, square).c_str(),
                2 + step, withOrder(sphereNow, sphere).c_str());
    square = squareNow;
    sphere = sphereNow;
  }
}

/// The residual's largest entry, max |K_ff u_f + K_fb u_b|, over machine precision times the
/// largest sum of magnitudes, max (|K_ff| |u_f| + |K_fb| |u_b|).
double residual(const MeshHandle& system, const Field& field) {
  const auto n = system->vertexCount;
  const auto t = system->fixedCount;
  Eigen::VectorXd u(n);
  for (Eigen::Index s = 0; s < n; ++s) {
    u[s] = field[static_cast<std::size_t>(system->vertexOrder[static_cast<std::size_t>(s)])];
  }
  const Eigen::VectorXd rows =
      *system->freeFreeBlock * u.tail(n - t) + *system->freeFixedBlock * u.head(t);
  const Eigen::VectorXd sums = system->freeFreeBlock->cwiseAbs() * u.tail(n - t).cwiseAbs() +
                               system->freeFixedBlock->cwiseAbs() * u.head(t).cwiseAbs();
  return rows.cwiseAbs().maxCoeff() / (kEpsilon * sums.maxCoeff());
}

/// A line about a flat mesh and the linear field x + scaleY y, which P1 elements represent exactly.
void flatLine(const char* name, const Mesh& mesh, double scaleY) {
  int code = 0;
  const QelmMeshReport report = reportOf(mesh, code);
  const Field exact = mesh.sample([&](Point p) { return p.x + p.y * scaleY; });
  const MeshHandle system = built(mesh);
  const Field solved = solve(system, exact);
  std::printf("| %s | %.1e | %d | %d | %.1f | %.1e |\n", name, report.worstQuality, code,
              qelminfo(system.get()), residual(system, solved), largestError(solved, exact));
}

void slivers() {
  std::puts("\n## From regular triangles to slivers\n");
  std::puts(
      "A grid of 41 x 41 vertices with its boundary held, squeezed to an aspect. The field is");
  std::puts(
      "linear, so that elements are exact and all that is left is rounding. *Quality* and *check*");
  std::puts(
      "are what `qelmcheckTagged` says, *info* is `qelminfo`; the residual is in units of machine");
  std::puts("precision times the largest sum of magnitudes in a row.\n");
  std::puts("| aspect | quality | check | info | residual | error |");
  std::puts("| --: | --: | --: | --: | --: | --: |");
  for (const double aspect : {1.0, 1e-2, 1e-4, 1e-5, 1e-6, 1e-7, 1e-8}) {
    char name[32];
    std::snprintf(name, sizeof name, "%.0e", aspect);
    const Mesh mesh = gridMesh(41, 41).withBoundaryTagged().mapped([aspect](Point p) {
      return Point{p.x, p.y * aspect, 0};
    });
    flatLine(name, mesh, 1 / aspect);
  }
}

/// A line about a curved mesh that is scaled and moved, and how far its field then differs.
void movedLine(const char* name, double scale, double shift) {
  const Mesh mesh = openSurface(40, 40, 1).withBoundaryTagged();
  const Mesh moved = mesh.mapped([=](Point p) {
    return Point{scale * p.x + shift, scale * p.y + shift, scale * p.z + shift};
  });
  const Field values = mesh.sample([](Point p) { return p.x - p.y * p.z; });
  int code = 0;
  const QelmMeshReport report = reportOf(moved, code);
  const MeshHandle system = built(moved);
  const double difference = largestError(solve(system, values), solve(built(mesh), values));
  std::printf("| %s | %.1e | %d | %d | %.1e |\n", name, report.worstQuality, code,
              qelminfo(system.get()), difference);
}

void scalesAndDistances() {
  std::puts("\n## Large, small and far away\n");
  std::puts(
      "A curved, irregular sheet of 40 x 40 vertices about 1 across, and what scaling and moving");
  std::puts("it does to a field of order 1. Powers of two change no bit.\n");
  std::puts("| change | quality | check | info | difference |\n| --- | --: | --: | --: | --: |");
  movedLine("none", 1, 0);
  movedLine("times 2^40", 0x1p40, 0);
  movedLine("times 1e50", 1e50, 0);
  movedLine("times 1e-50", 1e-50, 0);
  movedLine("times 1e150", 1e150, 0);
  movedLine("times 1e-150", 1e-150, 0);
  movedLine("moved by 1e3", 1, 1e3);
  movedLine("moved by 1e6", 1, 1e6);
  movedLine("moved by 1e9", 1, 1e9);
}

void large() {
  std::puts("\n## A million vertices\n");
  const AnalyticCase half = annulusCase(250);
  const AnalyticCase whole = annulusCase(500);
  const double coarser = largestError(solve(built(half.mesh), half.exact), half.exact);
  const MeshHandle system = built(whole.mesh);
  const Field solved = solve(system, whole.exact);
  std::printf(
      "The annulus with %d vertices: error %s against %.2e at a quarter of them, residual %.1f.\n",
      whole.mesh.vertexCount(), withOrder(largestError(solved, whole.exact), coarser).c_str(),
      coarser, residual(system, solved));
}

/// How far a field leaves the range 0 .. 1 of its prescribed values.
double overshoot(const Mesh& mesh) {
  const MeshHandle system = built(mesh);
  Field values(mesh.tags.size(), 0.0);
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    values[static_cast<std::size_t>(v)] = mesh.tags[static_cast<std::size_t>(v)] == 2 ? 1 : 0;
  }
  const Field solved = solve(system, values);
  double least = 0;
  double most = 1;
  for (const double u : solved) {
    least = std::fmin(least, u);
    most = std::fmax(most, u);
  }
  return std::fmax(most - 1, -least);
}

void obtuse() {
  std::puts("\n## Obtuse triangles\n");
  std::puts(
      "Where the angles opposite an edge add up to more than 180 degrees (not Delaunay), weights");
  std::puts(
      "are negative and a field may leave the range of its prescribed values. A grid of 31 x 31");
  std::puts("vertices, sheared; 0 along its boundary, 1 at one vertex inside.\n");
  std::puts(
      "| shear | positive off-diagonal entries | outside the range by |\n| --: | --: | --: |");
  for (const double shear : {0.0, 0.5, 1.0, 2.0, 4.0}) {
    Mesh mesh = gridMesh(31, 31).withBoundaryTagged().mapped([shear](Point p) {
      return Point{p.x - shear * p.y, p.y, 0};
    });
    mesh.tags[31 * 15 + 15] = 2;
    const MeshHandle system = built(mesh);
    int positive = 0;
    const SparseBlock& block = *system->freeFreeBlock;
    for (Eigen::Index j = 0; j < block.outerSize(); ++j) {
      for (SparseBlock::InnerIterator entry(block, j); entry; ++entry) {
        positive += entry.row() > j && entry.value() > 1e-12 ? 1 : 0;
      }
    }
    std::printf("| %.1f | %d of %d | %.1e |\n", shear, positive,
                static_cast<int>((block.nonZeros() - block.cols()) / 2), overshoot(mesh));
  }
}

void singularLine(const char* name, const Mesh& mesh) {
  int code = 0;
  reportOf(mesh, code);
  const MeshHandle system = built(mesh);
  Field ones(mesh.tags.size(), 1.0);
  const Field solved = solve(system, ones);
  int finite = 0;
  for (const double u : solved) finite += std::isfinite(u) ? 1 : 0;
  std::printf("| %s | %d %s | %d | %.1e | %d of %d |\n", name, code, qelmstatustext(code),
              qelminfo(system.get()), largestError(solved, ones), finite, mesh.vertexCount());
}

void singular() {
  std::puts("\n## Singular and nearly singular systems\n");
  std::puts(
      "All prescribed values are 1, and so is the exact field. `qelminfo` answers 0 for success "
      "and");
  std::puts("1 for a numerical issue; it does not see everything that `qelmcheckTagged` sees.\n");
  std::puts("| mesh | check | info | error | finite values |\n| --- | --- | --: | --: | --: |");
  const Mesh grid = gridMesh(20, 20);
  singularLine("a grid, one vertex held", grid.withTagged({0}));
  singularLine("a closed sphere, one vertex held", sphereMesh(4).withTagged({0}));
  singularLine("a closed sphere, none held", sphereMesh(4));
  Mesh flat = grid.withTagged({0});
  flat.vertices[3 * 210] = flat.vertices[3 * 211];
  flat.vertices[3 * 210 + 1] = flat.vertices[3 * 211 + 1];
  singularLine("a grid with a triangle without area", flat);
  Mesh far = grid.withTagged({0}).mapped([](Point p) { return Point{p.x + 1e15, p.y, 0}; });
  singularLine("a grid moved by 1e15", far);
}

double errorOf(const MeshHandle& system, const AnalyticCase& c) {
  return largestError(solve(system, c.exact), c.exact);
}

void twisted() {
  std::puts("\n## Plain and robust construction\n");
  std::puts("The annulus of above with its rings turned against each other, so that triangles are");
  std::puts(
      "obtuse, or in pairs near each other as well, so that every second ring has slivers.\n");
  std::puts("| vertices across | obtuse, plain | robust | slivers, plain | robust |");
  std::puts("| --: | --: | --: | --: | --: |");
  std::array<double, 4> coarser = {};
  for (int resolution = 16; resolution <= 128; resolution *= 2) {
    const AnalyticCase obtuse = twistedAnnulusCase(resolution, 1.7, 1);
    const AnalyticCase slivers = twistedAnnulusCase(resolution, 1.1, 0.5);
    const std::array<double, 4> errors = {
        errorOf(built(obtuse.mesh), obtuse), errorOf(constructRobust(obtuse.mesh), obtuse),
        errorOf(built(slivers.mesh), slivers), errorOf(constructRobust(slivers.mesh), slivers)};
    std::printf("| %d |", resolution + 1);
    for (std::size_t k = 0; k < 4; ++k)
      std::printf(" %s |", withOrder(errors[k], coarser[k]).c_str());
    std::puts("");
    coarser = errors;
  }
}

void flat() {
  std::puts(
      "\nA grid of 17 x 17 vertices, sheared and squeezed to an aspect, with a linear field along");
  std::puts("it, held at its short sides. Robust construction raises heights below 2^-26, or");
  std::puts(
      "1.5e-8, of a triangle's longest edge, and its flips work with what rounding leaves of");
  std::puts("the others.\n");
  std::puts("| aspect | flips for each triangle | plain | robust |\n| --: | --: | --: | --: |");
  for (const double aspect : {1.0, 1e-2, 1e-4, 1e-5, 1e-6, 1e-7, 1e-8, 1e-9}) {
    Mesh mesh = gridMesh(17, 17).mapped([&](Point p) {
      return Point{p.x + 0.37 * p.y, aspect * p.y, 0};
    });
    for (std::size_t i = 0; i < mesh.tags.size(); ++i) mesh.tags[i] = i % 17 % 16 == 0 ? 1 : 0;
    const Field exact = mesh.sample([](Point p) { return p.x; });
    const double flips = static_cast<double>(robustReportOf(mesh).flips) / mesh.triangleCount();
    std::printf("| %.0e | %.1f | %.1e | %.1e |\n", aspect, flips,
                largestError(solve(built(mesh), exact), exact),
                largestError(solve(constructRobust(mesh), exact), exact));
  }
}

void sameBits() {
  std::puts("\n## The same bits everywhere\n");
  std::puts(
      "The words of a field depend on its input alone, not on the build. The suite `bits` solves");
  std::puts("two meshes, cuts, welds and writes others, and compares every word with those on");
  std::puts("record (`tests/bits/expected.txt`). It passes with");
  std::puts("");
  std::puts("- g++ and clang, from `-O0` to `-O3`,");
  std::puts("- 64-bit Linux and Windows on x86-64, and Linux on 64-bit ARM (under qemu),");
  std::puts("- Eigen 3.4 and 5.0, nanoflann 1.4 and 1.12 (`scripts/compat`), on x86-64 and ARM.");
  std::puts("");
  std::puts("Eigen rewrote its symbolic factorisation for 5.0; the ordering and the order of");
  std::puts("operations in the numeric one are those of 3.4, and so fields keep their bits. What");
  std::puts("it takes is set in one place, `cmake/BuildFlags.cmake`: no contraction to fused");
  std::puts("operations, no fast arithmetic. A NaN's sign and payload are not promised.");
}

}  // namespace
}  // namespace qelm::test

int main() {
  using namespace qelm::test;
  std::puts("# Accuracy\n");
  std::puts(
      "Written by `scripts/accuracy`; every figure is measured when it runs. Linear finite "
      "elements");
  std::puts(
      "have an error of second order in the size of the triangles; what is added to that is "
      "rounding.\n");
  harmonicFields();
  poissonFields();
  slivers();
  scalesAndDistances();
  large();
  obtuse();
  twisted();
  flat();
  singular();
  sameBits();
  return 0;
}
