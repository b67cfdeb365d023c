#include "peers/cgal.h"

#include <CGAL/Polygon_mesh_processing/repair_polygon_soup.h>
#include <CGAL/Simple_cartesian.h>
#include <CGAL/grid_simplify_point_set.h>

#include <array>
#include <vector>

namespace qelm::bench {

struct CgalSoup {
  std::vector<CGAL::Simple_cartesian<double>::Point_3> points;
  std::vector<std::array<std::size_t, 3>> triangles;
};

std::shared_ptr<const CgalSoup> cgalSoup(const test::Mesh& mesh) {
  const auto soup = std::make_shared<CgalSoup>();
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    const test::Point p = mesh.point(i);
    soup->points.emplace_back(p.x, p.y, p.z);
  }
  for (std::size_t j = 0; j < mesh.triangles.size(); j += 3) {
    const auto corner = [&](std::size_t k) {
      return static_cast<std::size_t>(mesh.triangles[j + k]);
    };
    soup->triangles.push_back({corner(0), corner(1), corner(2)});
  }
  return soup;
}

std::size_t cgalMergeEqual(const CgalSoup& soup) {
  CgalSoup merged = soup;
  CGAL::Polygon_mesh_processing::merge_duplicate_points_in_polygon_soup(merged.points,
                                                                        merged.triangles);
  return merged.points.size();
}

std::size_t cgalGridSimplify(const CgalSoup& soup, double tolerance) {
  auto points = soup.points;
  const auto firstRemoved = CGAL::grid_simplify_point_set(points, tolerance);
  return static_cast<std::size_t>(firstRemoved - points.begin());
}

}  // namespace qelm::bench
