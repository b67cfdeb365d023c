/* The header in strict C99, and a first use of every kind of export from C. */
#include <stdio.h>

#include "qelm.h"

static int failures = 0;

static void expect(int holds, const char* what) {
  if (holds) return;
  fprintf(stderr, "failed: %s\n", what);
  ++failures;
}

/* Two right triangles; opposite corners are held at 0 and 1. */
static void solveASquare(void) {
  const double xyz[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
  const int triangles[] = {0, 1, 2, 0, 2, 3};
  const int tags[] = {1, 0, 2, 0};
  const double values[] = {0, -9, 1, -9};
  double field[4] = {-9, -9, -9, -9};
  const double* coordinates = NULL;
  const int* indices = NULL;
  int tagged = -1;
  int status = -1;
  MeshSystem* system = NULL;
  MeshSystem* copy = NULL;

  expect(qelmctorTagged(4, xyz, 2, triangles, tags, &tagged, &status, &system) == 1, "returns 1");
  expect(status == QELM_STATUS_OK && tagged == 2 && system != NULL, "constructs");
  expect(qelverts(system, &coordinates) == 4 && coordinates[3] == 1, "hands out coordinates");
  expect(qeltris(system, &indices) == 4 && indices[0] == 0, "hands out triangles");
  expect(qelminfo(system) == 0 && qelminfo(NULL) == QELM_INFO_NO_HANDLE, "tells its state");
  dupl(system, &copy);
  expect(usecount(copy) == 2, "counts its owners");
  qelmfree(system);
  qelmsolveTagged(copy, values, field, &status);
  expect(status == QELM_STATUS_OK && field[0] == 0 && field[2] == 1, "keeps fixed values");
  expect(field[1] > 0.499 && field[1] < 0.501, "solves between them");
  qelmfree(copy);
}

/* The curve where the value of a square's corners passes a half. */
static void cutASquare(void) {
  const double xyz[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
  const int triangles[] = {0, 1, 2, 0, 2, 3};
  const int tags[] = {1, 1, 1, 1};
  const double field[] = {0, 1, 1, 0};
  const double levels[] = {0.5};
  int status = -1;
  MeshSystem* system = NULL;
  QelmCurves* curves = NULL;

  qelmctorTagged(4, xyz, 2, triangles, tags, NULL, &status, &system);
  qelmcurvesTagged(system, field, 1, levels, &curves, &status);
  expect(status == QELM_STATUS_OK && curves != NULL, "cuts");
  expect(curves->curveCount == 1 && curves->pointCount == 3, "joins two pieces");
  expect(curves->starts[0] == 0 && curves->starts[1] == 3, "tells where curves start");
  expect(curves->levels[0] == 0 && curves->closed[0] == 0, "describes the curve");
  expect(curves->points[0] == 0.5 && curves->points[3] == 0.5, "is on the level");
  qelmfreecurves(curves);
  qelmfreecurves(NULL);
  qelmfree(system);
}

int main(void) {
  solveASquare();
  cutASquare();
  expect(sizeof(int) == 4 && sizeof(double) == 8 && sizeof(void*) == 8, "64-bit data model");
  return failures == 0 ? 0 : 1;
}
