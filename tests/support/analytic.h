// Surfaces with harmonic fields that are known in closed form. All are images of
// the strip [0, 2 pi) x [0, 1], closed around, with both rims tagged 1.
#ifndef QELM_TESTS_SUPPORT_ANALYTIC_H
#define QELM_TESTS_SUPPORT_ANALYTIC_H

#include <vector>

#include "support/meshes.h"

namespace qelm::test {

/// A mesh with the exact field at its vertices.
struct AnalyticCase {
  const char* name;
  Mesh mesh;
  Field exact;
};

/// Flat annulus, radii 1 and 3, log r.
AnalyticCase annulusCase(int resolution);
/// The annulus with its rings turned against each other by so many steps, which leaves log r
/// where it is, and every second ring `near` times as far from the next one: obtuse
/// triangles and slivers. (Turned further, they would overlap their neighbours.)
AnalyticCase twistedAnnulusCase(int resolution, double turn, double near);
/// Unit sphere between the colatitudes 0.4 and 2.2; with w = log tan(colatitude/2),
/// the field exp(w) cos(longitude), harmonic since w + i longitude is conformal.
AnalyticCase sphereZoneCase(int resolution);
/// The catenoid r = cosh z, |z| <= 1, with exp(z) cos(longitude): on a minimal
/// surface of revolution z + i longitude is conformal.
AnalyticCase catenoidCase(int resolution);

/// All of them at one resolution: 4 * resolution vertices around, resolution + 1 across.
std::vector<AnalyticCase> analyticCases(int resolution);

/// Largest |solved - exact| over the vertices; NaN if any of them is NaN.
double largestError(const Field& solved, const Field& exact);

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_ANALYTIC_H
