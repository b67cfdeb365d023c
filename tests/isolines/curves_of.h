// Level curves through the export, read out of their record.
#ifndef QELM_TESTS_ISOLINES_CURVES_OF_H
#define QELM_TESTS_ISOLINES_CURVES_OF_H

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

#include "qelm.h"
#include "support/handle.h"
#include "support/meshes.h"

namespace qelm::test {

using Coordinates = std::array<double, 3>;

struct Polyline {
  int level = 0;  ///< index in the caller's array
  bool closed = false;
  std::vector<Coordinates> points;

  friend bool operator==(const Polyline&, const Polyline&) = default;

  double length() const {
    double sum = 0;
    for (std::size_t i = closed ? 0 : 1; i < points.size(); ++i) {
      const Coordinates& p = points[i == 0 ? points.size() - 1 : i - 1];
      sum += std::hypot(points[i][0] - p[0], points[i][1] - p[1], points[i][2] - p[2]);
    }
    return sum;
  }
};
using Polylines = std::vector<Polyline>;

/// How failures show a curve.
inline void PrintTo(const Polyline& line, std::ostream* out) {
  *out << (line.closed ? "closed" : "open") << " at level " << line.level << ":";
  for (const Coordinates& p : line.points)
    *out << " (" << p[0] << ", " << p[1] << ", " << p[2] << ")";
}

inline Polyline open(int level, std::vector<Coordinates> points) {
  return {level, false, std::move(points)};
}
inline Polyline closed(int level, std::vector<Coordinates> points) {
  return {level, true, std::move(points)};
}

struct CurvesDeleter {
  void operator()(QelmCurves* curves) const { qelmfreecurves(curves); }
};
using CurvesHandle = std::unique_ptr<QelmCurves, CurvesDeleter>;

inline CurvesHandle cut(const MeshHandle& system, const Field& field,
                        const std::vector<double>& levels) {
  QelmCurves* raw = nullptr;
  int status = Construction::kUnwritten;
  qelmcurvesTagged(system.get(), field.data(), static_cast<int>(levels.size()), levels.data(), &raw,
                   &status);
  EXPECT_EQ(status, QELM_STATUS_OK);
  EXPECT_NE(raw, nullptr);
  return CurvesHandle(raw);
}

/// Fails where the record's arrays do not fit together.
inline Polylines polylinesOf(const QelmCurves& record) {
  Polylines lines;
  if (record.curveCount == 0) {
    EXPECT_EQ(record.pointCount, 0);
    EXPECT_EQ(record.points, nullptr);
    EXPECT_EQ(record.starts, nullptr);
    EXPECT_EQ(record.levels, nullptr);
    EXPECT_EQ(record.closed, nullptr);
    return lines;
  }
  EXPECT_EQ(record.starts[0], 0);
  EXPECT_EQ(record.starts[record.curveCount], record.pointCount);
  for (std::int64_t c = 0; c < record.curveCount; ++c) {
    Polyline line;
    line.level = record.levels[c];
    line.closed = record.closed[c] != 0;
    EXPECT_TRUE(record.closed[c] == 0 || record.closed[c] == 1);
    EXPECT_LT(record.starts[c], record.starts[c + 1]);
    for (std::int64_t i = record.starts[c]; i < record.starts[c + 1]; ++i) {
      const double* p = record.points + 3 * i;
      line.points.push_back({p[0], p[1], p[2]});
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

inline Polylines curvesOf(const Mesh& mesh, const Field& field, const std::vector<double>& levels) {
  const MeshHandle system = construct(mesh);
  const CurvesHandle record = cut(system, field, levels);
  return record == nullptr ? Polylines() : polylinesOf(*record);
}

inline double totalLength(const Polylines& lines) {
  double sum = 0;
  for (const Polyline& line : lines) sum += line.length();
  return sum;
}

inline std::size_t closedCount(const Polylines& lines) {
  std::size_t count = 0;
  for (const Polyline& line : lines) count += line.closed ? 1 : 0;
  return count;
}

}  // namespace qelm::test

#endif  // QELM_TESTS_ISOLINES_CURVES_OF_H
