#include "support/plain_element.h"

#include <cmath>

namespace qelm::test {
namespace {

struct Gradient {
  double x, y, z;
};

double product(const Gradient& a, const Gradient& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

}  // namespace

PlainStiffness plainStiffness(const double* p0, const double* p1, const double* p2) {
  const double ux = p1[0] - p0[0], uy = p1[1] - p0[1], uz = p1[2] - p0[2];  // p1 - p0
  const double vx = p2[0] - p0[0], vy = p2[1] - p0[1], vz = p2[2] - p0[2];  // p2 - p0
  const double wx = p2[0] - p1[0], wy = p2[1] - p1[1], wz = p2[2] - p1[2];  // p2 - p1
  const double rx = p0[0] - p1[0], ry = p0[1] - p1[1], rz = p0[2] - p1[2];  // p0 - p1
  const double nx = uy * vz - uz * vy, ny = uz * vx - ux * vz, nz = ux * vy - uy * vx;

  const double area = 0.5 * std::sqrt(nx * nx + ny * ny + nz * nz);
  const double l12 = std::sqrt(wx * wx + wy * wy + wz * wz);
  const double l01 = std::sqrt(ux * ux + uy * uy + uz * uz);
  const double l02 = std::sqrt(vx * vx + vy * vy + vz * vz);
  const double h0 = 2 * area / l12;
  const double h1 = 2 * area / l02;
  const double h2 = 2 * area / l01;

  const double s0 = (rx * wx + ry * wy + rz * wz) / l12 / l12;
  const Gradient g0 = {(p0[0] - (p1[0] + s0 * wx)) / h0 / h0, (p0[1] - (p1[1] + s0 * wy)) / h0 / h0,
                       (p0[2] - (p1[2] + s0 * wz)) / h0 / h0};
  const double s1 = (vx * ux + vy * uy + vz * uz) / l02 / l02;
  const Gradient g1 = {(p1[0] - (p0[0] + s1 * vx)) / h1 / h1, (p1[1] - (p0[1] + s1 * vy)) / h1 / h1,
                       (p1[2] - (p0[2] + s1 * vz)) / h1 / h1};
  const double s2 = (rx * wx + ry * wy + rz * wz) / l01 / l01;
  const Gradient g2 = {(p2[0] - (p1[0] + s2 * rx)) / h2 / h2, (p2[1] - (p1[1] + s2 * ry)) / h2 / h2,
                       (p2[2] - (p1[2] + s2 * rz)) / h2 / h2};

  return {area * product(g0, g0), area * product(g1, g1), area * product(g2, g2),
          area * product(g0, g1), area * product(g1, g2), area * product(g0, g2)};
}

}  // namespace qelm::test
