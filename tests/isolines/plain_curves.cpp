#include "isolines/plain_curves.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>

namespace qelm::test {
namespace {

std::int32_t corner(const Mesh& mesh, int t, int k) {
  return mesh.triangles[3 * static_cast<std::size_t>(t) + static_cast<std::size_t>(k % 3)];
}

double valueAt(const Field& field, std::int32_t v) { return field[static_cast<std::size_t>(v)]; }

bool isHole(const Mesh& mesh, const Field& field, int t) {
  for (int k = 0; k < 3; ++k) {
    if (std::isnan(valueAt(field, corner(mesh, t, k)))) return true;
  }
  return false;
}

/// How far from the low end (or, as the second, from the high end) a level is.
std::pair<bool, double> crossingBetween(double low, double high, double level) {
  if (level == high) return {false, 0};
  if (std::isinf(low) && std::isinf(high)) return {true, 0.5};
  if (std::isinf(low)) return {false, 0};
  if (std::isinf(high)) return {true, 0};
  const double scale = std::isinf(high - low) ? 0.5 : 1;
  const double below = scale * level - scale * low;
  const double above = scale * high - scale * level;
  const double rise = scale * high - scale * low;
  return below <= above ? std::pair(true, below / rise) : std::pair(false, above / rise);
}

Coordinates crossing(const Mesh& mesh, const Field& field, EdgeKey edge, double level) {
  std::int32_t low = edge.first;
  std::int32_t high = edge.second;
  if (valueAt(field, low) > valueAt(field, high)) std::swap(low, high);
  const auto [fromLow, share] = crossingBetween(valueAt(field, low), valueAt(field, high), level);
  const Point p = mesh.point(fromLow ? low : high);
  const Point q = mesh.point(fromLow ? high : low);
  const auto along = [share = share](double from, double to) {
    const double step = to - from;
    const double x = std::isinf(step) ? (1 - share) * from + share * to : from + share * step;
    return x == 0 ? 0.0 : x;
  };
  return {along(p.x, q.x), along(p.y, q.y), along(p.z, q.z)};
}

Coordinates coordinatesOf(const Mesh& mesh, std::int32_t v) {
  const Point p = mesh.point(v);
  return {p.x, p.y, p.z};
}

int vertexAt(const Mesh& mesh, EdgeKey edge, const Coordinates& point) {
  if (coordinatesOf(mesh, edge.second) == point) return edge.second;
  if (coordinatesOf(mesh, edge.first) == point) return edge.first;
  return -1;
}

EdgeKey meshEdgeOf(const TriangleSegment& segment) {
  if (segment.fromVertex < 0 || segment.toVertex < 0) return {-1, -1};
  return std::minmax(segment.fromVertex, segment.toVertex);
}

/// A crossing of one level: the edge, and the triangle where more than two meet.
using CrossingKey = std::pair<EdgeKey, int>;

struct PlainJoiner {
  const std::vector<TriangleSegment>& segments;
  std::map<CrossingKey, std::vector<std::size_t>> at;  // segments that end there
  std::vector<bool> used;

  PlainJoiner(const std::vector<TriangleSegment>& all, const std::map<EdgeKey, int>& uses)
      : segments(all), used(all.size(), false) {
    for (std::size_t i = 0; i < segments.size(); ++i) {
      at[key(segments[i].fromEdge, segments[i].triangle, uses)].push_back(i);
      at[key(segments[i].toEdge, segments[i].triangle, uses)].push_back(i);
    }
  }

  static CrossingKey key(EdgeKey edge, int triangle, const std::map<EdgeKey, int>& uses) {
    return {edge, uses.at(edge) > 2 ? triangle : -1};
  }

  /// From the crossing `start` on; the balance counts segments along their sense.
  Polyline walk(CrossingKey start, const std::map<EdgeKey, int>& uses, int& balance) {
    Polyline line;
    CrossingKey here = start;
    for (;;) {
      std::size_t next = segments.size();
      for (const std::size_t i : at[here]) {
        if (!used[i]) next = std::min(next, i);
      }
      if (next == segments.size()) break;
      used[next] = true;
      const TriangleSegment& segment = segments[next];
      const bool forward = key(segment.fromEdge, segment.triangle, uses) == here;
      balance += forward ? 1 : -1;
      if (line.points.empty()) line.points.push_back(forward ? segment.from : segment.to);
      line.points.push_back(forward ? segment.to : segment.from);
      here = key(forward ? segment.toEdge : segment.fromEdge, segment.triangle, uses);
    }
    line.closed = !line.points.empty() && here == start;
    if (line.closed) line.points.pop_back();
    return line;
  }
};

void startAtLeast(Polyline& line) {
  if (!line.closed) return;
  std::rotate(line.points.begin(), std::min_element(line.points.begin(), line.points.end()),
              line.points.end());
}

Polyline finished(Polyline line, int balance) {
  Polyline reversed = line;
  std::reverse(reversed.points.begin(), reversed.points.end());
  startAtLeast(line);
  startAtLeast(reversed);
  if (balance < 0 || (balance == 0 && reversed.points < line.points)) return reversed;
  return line;
}

using PlainSegment = std::pair<Coordinates, Coordinates>;

std::vector<PlainSegment> segmentsOf(const Polylines& lines, int levelIndex) {
  std::vector<PlainSegment> segments;
  for (const Polyline& line : lines) {
    if (line.level != levelIndex) continue;
    for (std::size_t i = 1; i < line.points.size(); ++i) {
      segments.emplace_back(line.points[i - 1], line.points[i]);
    }
    if (line.closed) segments.emplace_back(line.points.back(), line.points.front());
  }
  return segments;
}

/// Without those that are there both ways, as often as they are.
std::vector<PlainSegment> withoutReturns(std::vector<PlainSegment> segments) {
  std::map<PlainSegment, int> counts;
  for (const PlainSegment& s : segments) {
    const auto back = counts.find({s.second, s.first});
    if (back != counts.end() && back->second > 0) {
      --back->second;
    } else {
      ++counts[s];
    }
  }
  segments.clear();
  for (const auto& [s, count] : counts)
    segments.insert(segments.end(), static_cast<std::size_t>(count), s);
  return segments;
}

/// One of each if there is an odd number of it, whichever way round.
std::vector<PlainSegment> oddOnes(const std::vector<PlainSegment>& segments) {
  std::set<PlainSegment> odd;
  for (PlainSegment s : segments) {
    if (s.second < s.first) std::swap(s.first, s.second);
    if (!odd.insert(s).second) odd.erase(s);
  }
  return {odd.begin(), odd.end()};
}

std::string shown(const Coordinates& p) {
  std::ostringstream out;
  out.precision(17);
  out << "(" << p[0] << ", " << p[1] << ", " << p[2] << ")";
  return out.str();
}

/// Whether a curve of a level may end at a point.
bool mayEndAt(const Coordinates& point, const std::vector<TriangleSegment>& segments,
              const std::map<EdgeKey, int>& uses) {
  return std::any_of(segments.begin(), segments.end(), [&](const TriangleSegment& segment) {
    return (segment.from == point && uses.at(segment.fromEdge) != 2) ||
           (segment.to == point && uses.at(segment.toEdge) != 2);
  });
}

std::string flawInLine(const Polyline& line) {
  if (line.points.size() < (line.closed ? 3U : 2U)) return "too few points";
  for (std::size_t i = 1; i < line.points.size(); ++i) {
    if (line.points[i] == line.points[i - 1]) return "a segment of length zero";
  }
  std::vector<Coordinates> sorted = line.points;
  // The ends of an open curve may meet, at an edge of more than two triangles.
  if (!line.closed && sorted.front() == sorted.back()) sorted.pop_back();
  std::sort(sorted.begin(), sorted.end());
  const auto twice = std::adjacent_find(sorted.begin(), sorted.end());
  if (twice != sorted.end()) return "meets itself at " + shown(*twice);
  if (line.closed && line.points.front() != sorted.front()) return "does not start at its least";
  return "";
}

}  // namespace

std::map<EdgeKey, int> edgeUses(const Mesh& mesh, const Field& field) {
  std::map<EdgeKey, int> uses;
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    if (isHole(mesh, field, t)) continue;
    for (int k = 0; k < 3; ++k) ++uses[std::minmax(corner(mesh, t, k), corner(mesh, t, k + 1))];
  }
  return uses;
}

std::vector<TriangleSegment> marchTriangles(const Mesh& mesh, const Field& field, double level) {
  std::vector<TriangleSegment> segments;
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    if (isHole(mesh, field, t)) continue;
    TriangleSegment segment{t, {}, {}, {-1, -1}, {-1, -1}, -1, -1};
    for (int k = 0; k < 3; ++k) {
      const std::int32_t a = corner(mesh, t, k);
      const std::int32_t b = corner(mesh, t, k + 1);
      const bool aboveA = valueAt(field, a) >= level;
      const bool aboveB = valueAt(field, b) >= level;
      if (aboveA && !aboveB) segment.fromEdge = std::minmax(a, b);
      if (!aboveA && aboveB) segment.toEdge = std::minmax(a, b);
    }
    if (segment.fromEdge.first < 0) continue;
    segment.from = crossing(mesh, field, segment.fromEdge, level);
    segment.to = crossing(mesh, field, segment.toEdge, level);
    segment.fromVertex = vertexAt(mesh, segment.fromEdge, segment.from);
    segment.toVertex = vertexAt(mesh, segment.toEdge, segment.to);
    segments.push_back(segment);
  }
  return segments;
}

std::vector<TriangleSegment> remainingSegments(const Mesh& mesh, const Field& field, double level) {
  std::vector<TriangleSegment> segments = marchTriangles(mesh, field, level);
  std::erase_if(segments,
                [](const TriangleSegment& segment) { return segment.from == segment.to; });
  const std::map<EdgeKey, int> uses = edgeUses(mesh, field);
  std::map<EdgeKey, int> along;
  for (const TriangleSegment& segment : segments) ++along[meshEdgeOf(segment)];
  std::erase_if(segments, [&](const TriangleSegment& segment) {
    const EdgeKey edge = meshEdgeOf(segment);
    return edge.first >= 0 && uses.at(edge) == 2 && along.at(edge) == 2;
  });
  return segments;
}

Polylines plainCurves(const Mesh& mesh, const Field& field, const std::vector<double>& levels) {
  const std::map<EdgeKey, int> uses = edgeUses(mesh, field);
  Polylines lines;
  for (std::size_t l = 0; l < levels.size(); ++l) {
    const std::vector<TriangleSegment> segments = marchTriangles(mesh, field, levels[l]);
    PlainJoiner joiner(segments, uses);
    Polylines ofLevel;
    const auto walkFrom = [&](const CrossingKey& start) {
      int balance = 0;
      Polyline line = joiner.walk(start, uses, balance);
      if (line.points.empty()) return;
      line.level = static_cast<int>(l);
      ofLevel.push_back(finished(std::move(line), balance));
    };
    const auto crossings = joiner.at;
    for (const auto& [start, ends] : crossings) {
      if (ends.size() == 1) walkFrom(start);
    }
    for (const auto& [start, ends] : crossings) walkFrom(start);
    std::sort(ofLevel.begin(), ofLevel.end(), [](const Polyline& a, const Polyline& b) {
      return a.points != b.points ? a.points < b.points : a.closed < b.closed;
    });
    lines.insert(lines.end(), ofLevel.begin(), ofLevel.end());
  }
  return lines;
}

std::string flawIn(const Polylines& lines, const Mesh& mesh, const Field& field,
                   const std::vector<double>& levels) {
  const std::map<EdgeKey, int> uses = edgeUses(mesh, field);
  std::map<int, std::vector<TriangleSegment>> segmentsOfLevel;
  for (std::size_t c = 0; c < lines.size(); ++c) {
    const Polyline& line = lines[c];
    const std::string where = "curve " + std::to_string(c) + ": ";
    if (line.level < 0 || line.level >= static_cast<int>(levels.size())) return where + "no level";
    if (const std::string flaw = flawInLine(line); !flaw.empty()) return where + flaw;
    if (!line.closed) {
      const auto [segments, isNew] = segmentsOfLevel.try_emplace(line.level);
      if (isNew) {
        segments->second =
            marchTriangles(mesh, field, levels[static_cast<std::size_t>(line.level)]);
      }
      for (const Coordinates& end : {line.points.front(), line.points.back()}) {
        if (!mayEndAt(end, segments->second, uses)) return where + "ends at " + shown(end);
      }
    }
    if (c == 0) continue;
    const Polyline& previous = lines[c - 1];
    if (line.level < previous.level) return where + "levels out of order";
    if (line.level == previous.level && line.points < previous.points) {
      return where + "out of order";
    }
  }
  return "";
}

std::string repetitionIn(const Polylines& lines) {
  std::set<std::pair<int, PlainSegment>> seen;
  for (std::size_t c = 0; c < lines.size(); ++c) {
    for (PlainSegment s : segmentsOf({lines[c]}, lines[c].level)) {
      if (s.second < s.first) std::swap(s.first, s.second);
      if (!seen.insert({lines[c].level, s}).second) {
        return "curve " + std::to_string(c) + " repeats " + shown(s.first) + " - " +
               shown(s.second);
      }
    }
  }
  return "";
}

std::string differenceInSegments(const Polylines& lines, int levelIndex, const Mesh& mesh,
                                 const Field& field, double level, bool directed) {
  const std::map<EdgeKey, int> uses = edgeUses(mesh, field);
  std::set<PlainSegment> alongSheets;  // both ways round
  for (const auto& [edge, count] : uses) {
    if (count <= 2) continue;
    alongSheets.insert({coordinatesOf(mesh, edge.first), coordinatesOf(mesh, edge.second)});
    alongSheets.insert({coordinatesOf(mesh, edge.second), coordinatesOf(mesh, edge.first)});
  }
  std::vector<PlainSegment> expected;
  for (const TriangleSegment& segment : remainingSegments(mesh, field, level)) {
    expected.emplace_back(segment.from, segment.to);
  }
  std::vector<PlainSegment> actual = segmentsOf(lines, levelIndex);
  for (std::vector<PlainSegment>* segments : {&expected, &actual}) {
    std::erase_if(*segments, [&](const PlainSegment& s) { return alongSheets.contains(s); });
    *segments = directed ? withoutReturns(*segments) : oddOnes(*segments);
  }
  if (actual == expected) return "";
  std::vector<PlainSegment> only;
  std::set_difference(expected.begin(), expected.end(), actual.begin(), actual.end(),
                      std::back_inserter(only));
  if (!only.empty()) return "misses " + shown(only[0].first) + " -> " + shown(only[0].second);
  std::set_difference(actual.begin(), actual.end(), expected.begin(), expected.end(),
                      std::back_inserter(only));
  return "has " + shown(only[0].first) + " -> " + shown(only[0].second);
}

}  // namespace qelm::test
