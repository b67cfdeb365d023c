#include <qelm.h>
#include <stdio.h>

int main(void) {
  const double xyz[] = {0,0,0,  1,0,0,  1,1,0,  0,1,0};
  const int triangles[] = {0,1,2,  0,2,3};
  const int tags[] = {1, 0, 1, 0};
  const double values[] = {0, 0, 1, 0};
  double field[4];
  int status = 0;
  MeshSystem* system = NULL;
  qelmctorTagged(4, xyz, 2, triangles, tags, NULL, &status, &system);
  if (status != QELM_STATUS_OK || qelminfo(system) != 0) return 1;
  qelmsolveTagged(system, values, field, &status);
  printf("%g %g %g %g\n", field[0], field[1], field[2], field[3]);
  qelmfree(system);
  return 0;
}
