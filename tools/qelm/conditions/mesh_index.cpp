#include "conditions/mesh_index.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {

// Divides the differences by a power of two, which is exact, so that their squares stay in range.
long double distance(const Point& a, const Point& b) {
  int exponent = 0;
  Point d = a - b;
  double largest = std::max({std::abs(d[0]), std::abs(d[1]), std::abs(d[2])});
  if (std::isinf(largest)) {
    for (std::size_t k = 0; k < 3; ++k) d[k] = a[k] / 2 - b[k] / 2;
    largest = std::max({std::abs(d[0]), std::abs(d[1]), std::abs(d[2])});
    exponent = 1;
  }
  if (!(largest > 0) || std::isinf(largest)) return length(d);
  const int shift = std::ilogb(largest);
  for (double& part : d) part = std::scalbn(part, -shift);
  return std::scalbn(static_cast<long double>(length(d)), shift + exponent);
}

const std::vector<bool>& MeshIndex::used() {
  if (!used_) used_ = usedVertices(mesh_);
  return *used_;
}

int MeshIndex::nearestVertex(const Point& point) {
  int nearest = 0;
  long double least = std::numeric_limits<long double>::infinity();
  for (int v = 0; v < mesh_.vertexCount(); ++v) {
    if (!used()[asIndex(v)]) continue;
    const long double here = distance(mesh_.point(v), point);
    if (here < least) {
      nearest = v;
      least = here;
    }
  }
  return nearest;
}

const Box& MeshIndex::box() {
  if (box_) return *box_;
  for (int v = 0; v < mesh_.vertexCount(); ++v) {
    if (!used()[asIndex(v)]) continue;
    if (!box_) box_ = Box{mesh_.point(v), mesh_.point(v)};
    box_->add(mesh_.point(v));
  }
  if (!box_) box_ = Box{mesh_.point(0), mesh_.point(0)};
  return *box_;
}

double MeshIndex::tolerance() {
  // As for welding: more than the rounding of single precision, far less than any detail.
  constexpr double kPart = 1e-6;
  return static_cast<double>(kPart * distance(box().low, box().high));
}

const std::vector<BoundaryLoop>& MeshIndex::loops() {
  if (!loops_) loops_ = boundaryLoops(mesh_);
  return *loops_;
}

const std::vector<int>& MeshIndex::parts() {
  if (parts_) return *parts_;
  std::vector<int> lowest = lowestOfPart(mesh_);
  std::vector<int> number(lowest.size(), -1);
  for (const int v : mesh_.triangles) number[asIndex(lowest[asIndex(v)])] = 0;
  for (int& part : number)
    if (part == 0) part = partCount_++;
  for (int& part : lowest) part = number[asIndex(part)];
  return parts_.emplace(std::move(lowest));
}

int MeshIndex::partCount() {
  parts();
  return partCount_;
}

}  // namespace qelm::tool
