#include "support/plain_assembly.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace qelm::test {
namespace {

struct Gradient {
  double x, y, z;
};

double product(const Gradient& a, const Gradient& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

}  // namespace

PlainAssembly plainAssembly(int t, int n, const std::vector<double>& coordinates,
                            const std::vector<std::int32_t>& triangles) {
  PlainAssembly plain;
  plain.vertices = std::make_shared<const std::vector<double>>(coordinates);
  plain.triangles = std::make_shared<const std::vector<std::int32_t>>(triangles);
  std::vector<Eigen::Triplet<double, int>> triplets;
  triplets.reserve(3 * triangles.size());
  std::vector<double> areas(static_cast<std::size_t>(n));
  std::vector<bool> used(static_cast<std::size_t>(n));
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const int i0 = triangles[j];
    const int i1 = triangles[j + 1];
    const int i2 = triangles[j + 2];
    if (i0 == i1 || i1 == i2 || i0 == i2) {
      plain.status = 23;
      return plain;
    }
    const auto v0 = static_cast<std::size_t>(i0);
    const auto v1 = static_cast<std::size_t>(i1);
    const auto v2 = static_cast<std::size_t>(i2);
    used[v0] = used[v1] = used[v2] = true;
    const double* p0 = coordinates.data() + 3 * v0;
    const double* p1 = coordinates.data() + 3 * v1;
    const double* p2 = coordinates.data() + 3 * v2;

    const double ux = p1[0] - p0[0], uy = p1[1] - p0[1], uz = p1[2] - p0[2];  // p1 - p0
    const double vx = p2[0] - p0[0], vy = p2[1] - p0[1], vz = p2[2] - p0[2];  // p2 - p0
    const double wx = p2[0] - p1[0], wy = p2[1] - p1[1], wz = p2[2] - p1[2];  // p2 - p1
    const double rx = p0[0] - p1[0], ry = p0[1] - p1[1], rz = p0[2] - p1[2];  // p0 - p1
    const double nx = uy * vz - uz * vy, ny = uz * vx - ux * vz, nz = ux * vy - uy * vx;

    const double area = 0.5 * std::sqrt(nx * nx + ny * ny + nz * nz);
    areas[v0] += area;
    areas[v1] += area;
    areas[v2] += area;
    const double l12 = std::sqrt(wx * wx + wy * wy + wz * wz);
    const double l01 = std::sqrt(ux * ux + uy * uy + uz * uz);
    const double l02 = std::sqrt(vx * vx + vy * vy + vz * vz);
    const double h0 = 2 * area / l12;
    const double h1 = 2 * area / l02;
    const double h2 = 2 * area / l01;

    const double s0 = (rx * wx + ry * wy + rz * wz) / l12 / l12;
    const Gradient g0 = {(p0[0] - (p1[0] + s0 * wx)) / h0 / h0,
                         (p0[1] - (p1[1] + s0 * wy)) / h0 / h0,
                         (p0[2] - (p1[2] + s0 * wz)) / h0 / h0};
    const double s1 = (vx * ux + vy * uy + vz * uz) / l02 / l02;
    const Gradient g1 = {(p1[0] - (p0[0] + s1 * vx)) / h1 / h1,
                         (p1[1] - (p0[1] + s1 * vy)) / h1 / h1,
                         (p1[2] - (p0[2] + s1 * vz)) / h1 / h1};
    const double s2 = (rx * wx + ry * wy + rz * wz) / l01 / l01;
    const Gradient g2 = {(p2[0] - (p1[0] + s2 * rx)) / h2 / h2,
                         (p2[1] - (p1[1] + s2 * ry)) / h2 / h2,
                         (p2[2] - (p1[2] + s2 * rz)) / h2 / h2};

    const double k01 = area * product(g0, g1);
    const double k12 = area * product(g1, g2);
    const double k02 = area * product(g0, g2);
    triplets.emplace_back(i0, i1, k01);
    triplets.emplace_back(i1, i0, k01);
    triplets.emplace_back(i1, i2, k12);
    triplets.emplace_back(i2, i1, k12);
    triplets.emplace_back(i0, i2, k02);
    triplets.emplace_back(i2, i0, k02);
    triplets.emplace_back(i0, i0, area * product(g0, g0));
    triplets.emplace_back(i1, i1, area * product(g1, g1));
    triplets.emplace_back(i2, i2, area * product(g2, g2));
  }
  for (const bool isUsed : used) {
    if (!isUsed) {
      plain.status = 24;
      return plain;
    }
  }
  SparseBlock k(n, n);
  k.setFromTriplets(triplets.begin(), triplets.end());
  for (double& area : areas) area = 1.0 / area;
  plain.inverseAreas = std::move(areas);
  plain.freeFree = k.block(t, t, n - t, n - t);
  plain.freeFixed = k.block(t, 0, n - t, t);
  return plain;
}

}  // namespace qelm::test
