/* Prints the layout of every record of the header: "RECORD size", "RECORD.FIELD offset size". */
#include <stddef.h>
#include <stdio.h>

#include "qelm.h"

#define RECORD(type) printf(#type " %zu\n", sizeof(type))
#define FIELD(type, field) \
  printf(#type "." #field " %zu %zu\n", offsetof(type, field), sizeof(((type*)NULL)->field))

int main(void) {
  RECORD(IsoPointMatrix);
  FIELD(IsoPointMatrix, data);
  FIELD(IsoPointMatrix, rows);
  FIELD(IsoPointMatrix, cols);
  RECORD(IsoEdgeMatrix);
  FIELD(IsoEdgeMatrix, data);
  FIELD(IsoEdgeMatrix, rows);
  FIELD(IsoEdgeMatrix, cols);
  RECORD(QelmCurves);
  FIELD(QelmCurves, curveCount);
  FIELD(QelmCurves, pointCount);
  FIELD(QelmCurves, points);
  FIELD(QelmCurves, starts);
  FIELD(QelmCurves, levels);
  FIELD(QelmCurves, closed);
  RECORD(QelmFinding);
  FIELD(QelmFinding, count);
  FIELD(QelmFinding, first);
  RECORD(QelmMeshReport);
  FIELD(QelmMeshReport, indexOutOfRange);
  FIELD(QelmMeshReport, repeatedVertex);
  FIELD(QelmMeshReport, unusedVertex);
  FIELD(QelmMeshReport, notFinite);
  FIELD(QelmMeshReport, nearZeroArea);
  FIELD(QelmMeshReport, sizeOutOfRange);
  FIELD(QelmMeshReport, untaggedPart);
  FIELD(QelmMeshReport, part);
  FIELD(QelmMeshReport, taggedVertex);
  FIELD(QelmMeshReport, crowdedEdge);
  FIELD(QelmMeshReport, boundaryLoop);
  FIELD(QelmMeshReport, opposedEdge);
  FIELD(QelmMeshReport, repeatedTriangle);
  FIELD(QelmMeshReport, coincidentVertex);
  FIELD(QelmMeshReport, worstTriangle);
  FIELD(QelmMeshReport, worstQuality);
  RECORD(QelmPrediction);
  FIELD(QelmPrediction, factorEntries);
  FIELD(QelmPrediction, handleBytes);
  FIELD(QelmPrediction, peakBytes);
  FIELD(QelmPrediction, multiplications);
  RECORD(QelmRobustReport);
  FIELD(QelmRobustReport, changed);
  FIELD(QelmRobustReport, sheets);
  FIELD(QelmRobustReport, flatTriangles);
  FIELD(QelmRobustReport, notDelaunayEdges);
  FIELD(QelmRobustReport, flips);
  return 0;
}
