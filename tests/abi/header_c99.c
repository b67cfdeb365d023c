/* The header in strict C99, and a first use of every kind of export from C. */
#include <stddef.h>
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
  double nothing[] = {0, -9, 1, -9};
  int64_t first = -9;
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
  qelmsolveCheckedTagged(copy, 1, values, NULL, field, &first, &status);
  expect(status == QELM_STATUS_OK && first == -1, "solves with a look at the numbers");
  nothing[2] = values[2] / values[0];
  qelmsolveCheckedTagged(copy, 1, nothing, NULL, field, &first, &status);
  expect(status == QELM_STATUS_VALUE_NOT_FINITE && first == 2, "says which is wrong");
  qelmfree(copy);
}

/* A square with a triangle without area on one side, solved robustly. */
static void solveAFlatTriangle(void) {
  const double xyz[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0.5, 0, 0};
  const int triangles[] = {0, 1, 2, 0, 2, 3, 0, 4, 1};
  const int tags[] = {1, 0, 2, 0, 0};
  const double values[] = {0, -9, 1, -9, -9};
  double field[5] = {-9, -9, -9, -9, -9};
  int tagged = -1;
  int status = -1;
  MeshSystem* system = NULL;
  QelmRobustReport report;
  QelmPrediction prediction;

  expect(qelmcheckRobustTagged(5, xyz, 3, triangles, tags, &report) == 0,
         "looks at a flat triangle");
  expect(report.changed == 1 && report.flatTriangles == 1, "finds it");
  expect(sizeof(QelmRobustReport) == 40, "has a fixed layout");
  expect(offsetof(QelmRobustReport, flips) == 32, "has fixed places");
  expect(qelmpredictTagged(5, xyz, 3, triangles, tags, 1, &prediction) == 0, "predicts");
  expect(sizeof(QelmPrediction) == 32, "has a fixed layout");
  expect(offsetof(QelmPrediction, multiplications) == 24, "has fixed places");
  expect(qelmctorLimitedTagged(5, xyz, 3, triangles, tags, 1, prediction.peakBytes - 1, NULL,
                               &tagged, &status, &system) == 1,
         "returns 1");
  expect(status == QELM_STATUS_TOO_LARGE && system == NULL, "keeps the limit");
  expect(qelmctorRobustTagged(5, xyz, 3, triangles, tags, &tagged, &status, &system) == 1,
         "returns 1");
  expect(status == QELM_STATUS_OK && tagged == 2 && system != NULL, "constructs");
  qelmsolveTagged(system, values, field, &status);
  expect(field[4] > 0 && field[4] < 1, "has a field");
  qelmfree(system);
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

/* Looks at a square, and solves two fields on it at once. */
static void checkAndSolveASquare(void) {
  const double xyz[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
  const int triangles[] = {0, 1, 2, 0, 2, 3};
  const int tags[] = {1, 0, 2, 0};
  const double values[] = {0, -9, 1, -9, 2, -9, 2, -9};
  double fields[8];
  int status = -1;
  MeshSystem* system = NULL;
  QelmMeshReport report;

  expect(qelmcheckTagged(4, xyz, 2, triangles, tags, &report) == 0, "finds no defect");
  expect(report.part.count == 1 && report.indexOutOfRange.first == -1, "reports");
  expect(sizeof(QelmFinding) == 16 && sizeof(QelmMeshReport) == 240, "has a fixed layout");
  expect(offsetof(QelmMeshReport, part) == 112, "has fixed places");
  expect(offsetof(QelmMeshReport, worstQuality) == 232, "has fixed places");
  qelmctorTagged(4, xyz, 2, triangles, tags, NULL, &status, &system);
  qelmsolveManyTagged(system, 2, values, NULL, fields, &status);
  expect(status == 0 && fields[1] > 0.499 && fields[1] < 0.501, "solves the first");
  expect(fields[5] > 1.999 && fields[5] < 2.001, "solves the second");
  qelmfree(system);
  expect(qelmversion()[0] == '0' + QELM_VERSION_MAJOR, "tells its version");
  expect(qelmstatustext(QELM_CHECK_NOT_FINITE)[0] != 0, "has words for a code");
}

int main(void) {
  solveASquare();
  solveAFlatTriangle();
  cutASquare();
  checkAndSolveASquare();
  expect(sizeof(int) == 4 && sizeof(double) == 8 && sizeof(void*) == 8, "64-bit data model");
  return failures == 0 ? 0 : 1;
}
