// What VTK does of our jobs. Its objects stay behind this header.
#ifndef QELM_BENCH_PEERS_VTK_H
#define QELM_BENCH_PEERS_VTK_H

#include <cstddef>
#include <memory>
#include <vector>

#include "support/meshes.h"

class vtkPolyData;

namespace qelm::bench {

/// Triangles with 64-bit points, and with the field as 64-bit point data if it is not
/// empty.
std::shared_ptr<vtkPolyData> vtkMesh(const test::Mesh& mesh, const test::Field& field);

/// Segments of the contour filter, as it comes.
std::size_t vtkContours(vtkPolyData& mesh, const std::vector<double>& levels);

/// Points of the polylines that the stripper joins the contour filter's segments into.
std::size_t vtkJoinedContours(vtkPolyData& mesh, const std::vector<double>& levels);

/// Points left by vtkCleanPolyData, and by its newer and faster replacement
/// vtkStaticCleanPolyData, with an absolute tolerance. Neither looks for repeated
/// triangles.
std::size_t vtkClean(vtkPolyData& mesh, double tolerance);
std::size_t vtkStaticClean(vtkPolyData& mesh, double tolerance);

}  // namespace qelm::bench

#endif  // QELM_BENCH_PEERS_VTK_H
