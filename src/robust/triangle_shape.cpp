#include "robust/triangle_shape.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>

#include "interface/index.h"

namespace qelm {
namespace {

Vec3 timesPowerOfTwo(Vec3 a, int exponent) {
  return {std::ldexp(a.x, exponent), std::ldexp(a.y, exponent), std::ldexp(a.z, exponent)};
}

bool isBefore(Vec3 a, Vec3 b) { return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z); }

bool isZero(Vec3 a) { return a.x == 0 && a.y == 0 && a.z == 0; }

/// Edge k is opposite corner k, from corner k + 1 to corner k + 2.
std::array<Vec3, 3> edgesOf(const std::array<Vec3, 3>& p) {
  return {p[2] - p[1], p[0] - p[2], p[1] - p[0]};
}

double extentOf(const std::array<Vec3, 3>& edges) {
  return std::max(std::max(largestComponent(edges[0]), largestComponent(edges[1])),
                  largestComponent(edges[2]));
}

/// The edges, multiplied by a power of two. If differences of coordinates would overflow, the
/// points are scaled first.
std::array<Vec3, 3> rescaledEdges(const std::array<Vec3, 3>& p) {
  std::array<Vec3, 3> edges = edgesOf(p);
  if (extentOf(edges) > 0x1p1020)
    edges =
        edgesOf({timesPowerOfTwo(p[0], -4), timesPowerOfTwo(p[1], -4), timesPowerOfTwo(p[2], -4)});
  int exponent = 0;
  std::frexp(extentOf(edges), &exponent);
  for (Vec3& edge : edges) edge = timesPowerOfTwo(edge, -exponent);
  return edges;
}

/// The edges, rescaled if their fourth powers would overflow or underflow.
std::array<Vec3, 3> scaledEdges(const std::array<Vec3, 3>& p) {
  const std::array<Vec3, 3> edges = edgesOf(p);
  const double extent = extentOf(edges);
  return extent > 0x1p-200 && extent < 0x1p200 ? edges : rescaledEdges(p);
}

/// The cotangents at P, Q and the apex of a triangle whose longest edge PQ has length 1, with its
/// foot at `fromP` from P and `fromQ` from Q.
std::array<double, 3> cotangentsAtHeight(double fromP, double fromQ, double height) {
  return {fromP / height, fromQ / height, (height * height - fromP * fromQ) / height};
}

double leastHeight(double fromP, double fromQ) {
  return std::min(fromP, fromQ) < kLeastHeightOfNeedle ? kLeastHeightOfNeedle : kLeastHeight;
}

/// Those of a raised triangle. P and Q are the two corners after the corner `apex`.
Cotangents byCorner(std::size_t apex, double atApex, double atP, double atQ) {
  Cotangents c{{}, true};
  c.at[apex] = atApex;
  c.at[(apex + 1) % 3] = atP;
  c.at[(apex + 2) % 3] = atQ;
  return c;
}

Cotangents raised(std::size_t apex, double fromP, double fromQ) {
  const auto flat = cotangentsAtHeight(fromP, fromQ, leastHeight(fromP, fromQ));
  return byCorner(apex, flat[2], flat[0], flat[1]);
}

Cotangents quotients(const std::array<double, 3>& numerators, double denominator) {
  return {{numerators[0] / denominator, numerators[1] / denominator, numerators[2] / denominator},
          false};
}

/// Whether a height is above both limits, wherever its foot is, as most are. The denominator is to
/// `base` as the height is to the longest edge.
bool isHigh(double denominator, double base) { return denominator >= kLeastHeightOfNeedle * base; }

/// The cotangents numerators / denominator, or those of the raised triangle; `apex` is opposite the
/// longest edge.
Cotangents raisedIfFlat(const std::array<double, 3>& numerators, double denominator, double base,
                        std::size_t apex) {
  const double fromP = std::clamp(numerators[(apex + 1) % 3] / base, 0.0, 1.0);
  const double fromQ = std::clamp(numerators[(apex + 2) % 3] / base, 0.0, 1.0);
  if (!(denominator >= leastHeight(fromP, fromQ) * base)) return raised(apex, fromP, fromQ);
  return quotients(numerators, denominator);
}

/// For two coincident corners: an isosceles triangle with legs of length 1 over a base of
/// kLeastHeightOfNeedle between the two.
Cotangents needle(std::size_t tip) {
  const double atBase = kLeastHeightOfNeedle / 2;
  return byCorner(tip, (1 - atBase * atBase) / (2 * atBase), atBase, atBase);
}

/// The corner opposite the longest edge; of several, the one with the lowest coordinates.
std::size_t apexOf(const std::array<Vec3, 3>& p, const std::array<double, 3>& squaredLength) {
  // The first one, without a branch: any of the three is as likely.
  std::size_t apex = squaredLength[1] > squaredLength[0] ? 1 : 0;
  apex = squaredLength[2] > squaredLength[apex] ? 2 : apex;
  for (std::size_t k = apex + 1; k < 3; ++k) {
    if (squaredLength[k] == squaredLength[apex] && isBefore(p[k], p[apex])) apex = k;
  }
  return apex;
}

}  // namespace

// The area is the cross product of the two shorter edges: accurate for a needle, too, where that of
// the long edges is not.
Cotangents cotangentsOf(Vec3 p0, Vec3 p1, Vec3 p2) {
  const std::array<Vec3, 3> p = {p0, p1, p2};
  const std::array<Vec3, 3> e = scaledEdges(p);
  const std::array<bool, 3> isPoint = {isZero(e[0]), isZero(e[1]), isZero(e[2])};
  if (isPoint[0] && isPoint[1]) {
    const double equilateral = 1 / std::sqrt(3.0);
    return {{equilateral, equilateral, equilateral}, true};
  }
  for (std::size_t k = 0; k < 3; ++k) {
    if (isPoint[k]) return needle(k);
  }

  const std::array<double, 3> squaredLength = {dot(e[0], e[0]), dot(e[1], e[1]), dot(e[2], e[2])};
  const std::size_t apex = apexOf(p, squaredLength);
  const double twiceArea = length(cross(e[(apex + 2) % 3], e[(apex + 1) % 3]));
  const std::array<double, 3> dots = {-dot(e[1], e[2]), -dot(e[2], e[0]), -dot(e[0], e[1])};
  const double longest = squaredLength[apex];
  if (isHigh(twiceArea, longest)) return quotients(dots, twiceArea);
  return raisedIfFlat(dots, twiceArea, longest, apex);
}

// Takes no square root and no division, since every triangle is looked at.
bool isSteep(Vec3 p0, Vec3 p1, Vec3 p2) {
  const std::array<Vec3, 3> e = scaledEdges({p0, p1, p2});
  const Vec3 normal = cross(e[0], e[1]);
  const double limit = kSteepCotangent * kSteepCotangent * dot(normal, normal);
  const std::array<double, 3> dots = {dot(e[1], e[2]), dot(e[2], e[0]), dot(e[0], e[1])};
  return std::any_of(dots.begin(), dots.end(), [&](double d) { return d * d > limit; });
}

// The longest edge is opposite the lowest cotangent. With the cotangents x and y at its ends, the
// foot divides it at x : y, and the height is 1 / (x + y) of its length. The first test takes a
// larger base, so that it need not know the apex.
Cotangents cotangentsOf(const std::array<double, 3>& numerators, double denominator) {
  const double sizes =
      std::fabs(numerators[0]) + std::fabs(numerators[1]) + std::fabs(numerators[2]);
  if (isHigh(denominator, sizes)) return quotients(numerators, denominator);
  const auto apex =
      asIndex(std::min_element(numerators.begin(), numerators.end()) - numerators.begin());
  return raisedIfFlat(numerators, denominator,
                      numerators[(apex + 1) % 3] + numerators[(apex + 2) % 3], apex);
}

}  // namespace qelm
