/* Answers to one mesh straight from the C interface, as 64-bit words, for comparison.
 *
 * usage: native_answers MESH ANSWERS
 *
 * MESH holds int n, int m, then double[3n] coordinates, int[3m] triangles, int[n] tags, double[n]
 * values and double[n] load. ANSWERS receives double[n] for the plain solve and double[n] for the
 * solve with load; then, for three levels of the plain field, the number of curves, and for each
 * its level's index, whether it is closed, the number of its points and their coordinates, all as
 * doubles. */
#include <stdio.h>
#include <stdlib.h>

#include "qelm.h"

static FILE* open(const char* path, const char* mode) {
  FILE* file = fopen(path, mode);
  if (file == NULL) exit(2);
  return file;
}

static void* take(FILE* file, size_t size, size_t count) {
  void* block = malloc(size * count);
  if (block == NULL || fread(block, size, count, file) != count) exit(3);
  return block;
}

static void answer(FILE* file, int status, const double* numbers, size_t count) {
  if (status != QELM_STATUS_OK || fwrite(numbers, sizeof *numbers, count, file) != count) exit(4);
}

static void answerCurves(FILE* file, int status, const QelmCurves* curves) {
  const double count = (double)curves->curveCount;
  answer(file, status, &count, 1);
  for (int64_t c = 0; c < curves->curveCount; ++c) {
    const int64_t begin = curves->starts[c];
    const int64_t points = curves->starts[c + 1] - begin;
    const double head[] = {curves->levels[c], curves->closed[c], (double)points};
    answer(file, status, head, 3);
    answer(file, status, curves->points + 3 * begin, 3 * (size_t)points);
  }
}

int main(int argc, char** argv) {
  if (argc != 3) return 1;
  FILE* mesh = open(argv[1], "rb");
  const int* counts = take(mesh, sizeof(int), 2);
  const size_t n = (size_t)counts[0];
  const size_t m = (size_t)counts[1];
  const double* vertices = take(mesh, sizeof(double), 3 * n);
  const int* triangles = take(mesh, sizeof(int), 3 * m);
  const int* tags = take(mesh, sizeof(int), n);
  const double* values = take(mesh, sizeof(double), n);
  const double* load = take(mesh, sizeof(double), n);

  int status = -1;
  MeshSystem* system = NULL;
  qelmctorTagged(counts[0], vertices, counts[1], triangles, tags, NULL, &status, &system);
  if (status != QELM_STATUS_OK) return 5;

  const double levels[] = {0.25, 1.5, 3.0};
  QelmCurves* curves = NULL;
  FILE* answers = open(argv[2], "wb");
  double* field = malloc(n * sizeof *field);
  if (field == NULL) return 6;
  qelmsolveTagged(system, values, field, &status);
  answer(answers, status, field, n);
  double* loaded = malloc(n * sizeof *loaded);
  if (loaded == NULL) return 6;
  qelmsolvePTagged(system, values, load, loaded, &status);
  answer(answers, status, loaded, n);
  qelmcurvesTagged(system, field, 3, levels, &curves, &status);
  answerCurves(answers, status, curves);
  qelmfreecurves(curves);
  qelmfree(system);
  return fclose(answers) == 0 ? 0 : 7;
}
