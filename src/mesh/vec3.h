// Points and three-component arithmetic with a fixed order of operations: sums run from x to z.
// Results are promised bit for bit, so nothing here may be reassociated and no product may be fused
// with a sum (-ffp-contract=off).
#ifndef QELM_MESH_VEC3_H
#define QELM_MESH_VEC3_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "interface/index.h"

namespace qelm {

struct Vec3 {
  double x;
  double y;
  double z;
};

/// The point of a vertex. 3n coordinates, packed xyz; the vertex is in 0 .. n-1.
inline Vec3 pointAt(std::span<const double> coordinates, std::int32_t vertex) {
  const std::size_t x = 3 * asIndex(vertex);
  return {coordinates[x], coordinates[x + 1], coordinates[x + 2]};
}

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator*(double s, Vec3 a) { return {s * a.x, s * a.y, s * a.z}; }
inline Vec3 operator/(Vec3 a, double s) { return {a.x / s, a.y / s, a.z / s}; }

inline double dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

inline Vec3 cross(Vec3 a, Vec3 b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Euclidean length. Overflows to infinity for components beyond about 1e154
/// and loses digits below about 1e-154: squares are formed as they are.
inline double length(Vec3 a) { return std::sqrt(dot(a, a)); }

/// The largest magnitude of a component.
inline double largestComponent(Vec3 a) {
  return std::max(std::max(std::fabs(a.x), std::fabs(a.y)), std::fabs(a.z));
}

}  // namespace qelm

#endif  // QELM_MESH_VEC3_H
