// Vector arithmetic on points.
#ifndef QELM_TOOLS_VEC3_H
#define QELM_TOOLS_VEC3_H

#include <cmath>

#include "mesh/mesh.h"

namespace qelm::tool {

inline Point operator-(const Point& a, const Point& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

inline Point operator+(const Point& a, const Point& b) {
  return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

inline double dot(const Point& a, const Point& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline Point cross(const Point& a, const Point& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline double length(const Point& a) { return std::sqrt(dot(a, a)); }

}  // namespace qelm::tool

#endif
