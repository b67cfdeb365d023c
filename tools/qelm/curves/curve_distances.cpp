#include "curves/curve_distances.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <nanoflann.hpp>
#include <vector>

#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

// Of one level. A level that asks for more has its samples farther apart.
constexpr double kMostSamples = 1e6;
// The nearest point of a curve is on the segment of one of so many nearest samples, but for rare
// bends.
constexpr std::size_t kNearest = 4;

/// A point of a curve, and the segment it is on.
struct Sample {
  Point point, from, to;
};

struct SampleCloud {
  std::vector<Sample> samples;
  std::size_t kdtree_get_point_count() const { return samples.size(); }
  double kdtree_get_pt(std::size_t k, std::size_t axis) const { return samples[k].point[axis]; }
  template <class Box>
  bool kdtree_get_bbox(Box&) const {
    return false;
  }
};
using SampleTree =
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, SampleCloud>,
                                        SampleCloud, 3, std::size_t>;

double lengthOf(const Curve& curve) {
  double sum = 0;
  for (std::size_t k = 0; k + (curve.closed ? 0 : 1) < curve.size(); ++k)
    sum += length(curve.point((k + 1) % curve.size()) - curve.point(k));
  return sum;
}

void addSamples(const Curve& curve, double step, SampleCloud& cloud) {
  for (std::size_t k = 0; k + (curve.closed ? 0 : 1) < curve.size(); ++k) {
    const Point a = curve.point(k);
    const Point b = curve.point((k + 1) % curve.size());
    const double count = std::max(1.0, std::ceil(length(b - a) / step));
    for (double i = 0; i <= count; ++i) cloud.samples.push_back({between(a, b, i / count), a, b});
  }
}

double distanceTo(const Sample& sample, const Point& p) {
  return length(between(sample.from, sample.to, nearestPart(sample.from, sample.to, p)) - p);
}

double distanceTo(const SampleTree& tree, const SampleCloud& cloud, const Point& p) {
  std::array<std::size_t, kNearest> nearest{};
  std::array<double, kNearest> squares{};
  const std::size_t count = tree.knnSearch(p.data(), kNearest, nearest.data(), squares.data());
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t k = 0; k < count; ++k)
    least = std::min(least, distanceTo(cloud.samples[nearest[k]], p));
  return least;
}

/// Widens `range` by the distances from one level's samples to the other's curves.
void widen(CurveDistances& range, const SampleCloud& from, const SampleCloud& to) {
  const SampleTree tree(3, to);
  for (const Sample& sample : from.samples) {
    const double distance = distanceTo(tree, to, sample.point);
    range.smallest = std::min(range.smallest, distance);
    range.largest = std::max(range.largest, distance);
  }
}

/// Of every level that has curves.
std::vector<SampleCloud> sampled(const CurveSet& curves, double step) {
  std::vector<double> lengths(curves.levels().size());
  for (std::size_t c = 0; c < curves.size(); ++c) lengths[curves[c].level] += lengthOf(curves[c]);
  std::vector<SampleCloud> clouds(lengths.size());
  for (std::size_t c = 0; c < curves.size(); ++c)
    addSamples(curves[c], std::max(step, lengths[curves[c].level] / kMostSamples),
               clouds[curves[c].level]);
  std::erase_if(clouds, [](const SampleCloud& cloud) { return cloud.samples.empty(); });
  return clouds;
}

}  // namespace

std::optional<CurveDistances> distancesBetween(const CurveSet& curves, double step) {
  const std::vector<SampleCloud> clouds = sampled(curves, step);
  if (clouds.size() < 2) return {};
  CurveDistances range{std::numeric_limits<double>::infinity(), 0};
  for (std::size_t k = 0; k + 1 < clouds.size(); ++k) {
    widen(range, clouds[k], clouds[k + 1]);
    widen(range, clouds[k + 1], clouds[k]);
  }
  return range;
}

}  // namespace qelm::tool
