#include "export/plain_heat_map.h"

#include <algorithm>
#include <cstddef>

namespace qelm::test {

void plainObj(std::ostream& out, const MeshSystem& system, const std::vector<double>& field,
              const std::string& path) {
  const std::vector<double>& v = *system.vertices;
  const std::vector<std::int32_t>& f = *system.triangles;
  const int nv = static_cast<int>(v.size()) / 3;
  const int nt = static_cast<int>(f.size()) / 3;
  out << "mtllib " << path << ".mtl" << std::endl;
  out << "usemtl Heat" << std::endl;
  for (int i = 0; i < nv; ++i) {
    const auto at = static_cast<std::size_t>(3 * i);
    out << "v " << v[at] << " " << v[at + 1] << " " << v[at + 2] << std::endl;
  }
  if (nv > 0) {
    const std::vector<double> values(field.begin(), field.begin() + nv);
    const auto extremes = std::minmax_element(values.begin(), values.end());
    const double m = *extremes.first;
    const double M = *extremes.second;
    for (const double s : values) {
      out << "vt " << 1.0 - (s - m) / (M - m) << " 0.5" << std::endl;
    }
  }
  for (int t = 0; t < nt; ++t) {
    const auto at = static_cast<std::size_t>(3 * t);
    out << "f " << f[at] + 1 << "/" << f[at] + 1 << " " << f[at + 1] + 1 << "/" << f[at + 1] + 1
        << " " << f[at + 2] + 1 << "/" << f[at + 2] + 1 << std::endl;
  }
}

void plainMtl(std::ostream& out) {
  out << "newmtl Heat"
      << " " << std::endl;
  out << "Kd 1 1 1" << std::string(13, ' ') << std::endl;
  out << "Ns 96.0784" << std::string(3, '\t') << " " << std::endl;
  out << "d 1" << std::string(5, '\t') << " " << std::endl;
  out << "illum 1" << std::string(4, '\t') << " " << std::endl;
  out << "Ka 0 0 0" << std::string(3, '\t') << " " << std::endl;
  out << "Ks 1 1 1" << std::string(3, '\t') << " " << std::endl;
  out << "map_Kd viridis.PNG" << std::endl;
}

}  // namespace qelm::test
