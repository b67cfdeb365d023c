#include "peers/vtk.h"

#include <vtkCellArray.h>
#include <vtkCleanPolyData.h>
#include <vtkContourFilter.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkStaticCleanPolyData.h>
#include <vtkStripper.h>

namespace qelm::bench {
namespace {

void setUp(vtkContourFilter& filter, vtkPolyData& mesh, const std::vector<double>& levels) {
  filter.SetInputData(&mesh);
  filter.SetNumberOfContours(static_cast<int>(levels.size()));
  for (std::size_t j = 0; j < levels.size(); ++j) {
    filter.SetValue(static_cast<int>(j), levels[j]);
  }
}

template <class Filter>
std::size_t clean(vtkPolyData& mesh, double tolerance) {
  vtkNew<Filter> filter;
  filter->SetInputData(&mesh);
  filter->ToleranceIsAbsoluteOn();
  filter->SetAbsoluteTolerance(tolerance);
  filter->Update();
  return static_cast<std::size_t>(filter->GetOutput()->GetNumberOfPoints());
}

}  // namespace

std::shared_ptr<vtkPolyData> vtkMesh(const test::Mesh& mesh, const test::Field& field) {
  vtkNew<vtkPoints> points;
  points->SetDataTypeToDouble();
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    const test::Point p = mesh.point(i);
    points->InsertNextPoint(p.x, p.y, p.z);
  }
  vtkNew<vtkCellArray> triangles;
  for (std::size_t t = 0; t < mesh.triangles.size(); t += 3) {
    triangles->InsertNextCell({mesh.triangles[t], mesh.triangles[t + 1], mesh.triangles[t + 2]});
  }
  std::shared_ptr<vtkPolyData> data(vtkPolyData::New(), [](vtkPolyData* d) { d->Delete(); });
  data->SetPoints(points);
  data->SetPolys(triangles);
  vtkNew<vtkDoubleArray> values;
  for (const double x : field) values->InsertNextValue(x);
  if (!field.empty()) data->GetPointData()->SetScalars(values);
  return data;
}

std::size_t vtkContours(vtkPolyData& mesh, const std::vector<double>& levels) {
  vtkNew<vtkContourFilter> contours;
  setUp(*contours, mesh, levels);
  contours->Update();
  return static_cast<std::size_t>(contours->GetOutput()->GetNumberOfLines());
}

std::size_t vtkJoinedContours(vtkPolyData& mesh, const std::vector<double>& levels) {
  vtkNew<vtkContourFilter> contours;
  setUp(*contours, mesh, levels);
  vtkNew<vtkStripper> stripper;
  // Its default of 1000 would cut long curves.
  stripper->SetMaximumLength(1 << 30);
  stripper->SetInputConnection(contours->GetOutputPort());
  stripper->Update();
  return static_cast<std::size_t>(stripper->GetOutput()->GetNumberOfPoints());
}

std::size_t vtkClean(vtkPolyData& mesh, double tolerance) {
  return clean<vtkCleanPolyData>(mesh, tolerance);
}

std::size_t vtkStaticClean(vtkPolyData& mesh, double tolerance) {
  return clean<vtkStaticCleanPolyData>(mesh, tolerance);
}

}  // namespace qelm::bench
