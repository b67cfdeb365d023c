// usage: mesh_files_bench RUNS FILE...
// Processor time of reading each mesh file into triangles in memory, and of writing these in its
// format to nowhere, in milliseconds, medians over RUNS. bench/mesh_files.py measures peers beside.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "files/paths.h"
#include "mesh_files/mesh_reader.h"
#include "mesh_files/mesh_writer.h"
#include "mesh_files/triangulate.h"
#include "text/error.h"

namespace {

/// Takes what a file would take, so that no disk is measured.
struct Nowhere : qelm::tool::ByteSink {
  void write(std::string_view more) override { size += more.size(); }
  std::size_t size = 0;
};

template <class Action>
double milliseconds(int runs, Action action) {
  std::vector<double> times;
  for (int k = 0; k < runs; ++k) {
    const std::clock_t begin = std::clock();
    action();
    times.push_back(1e3 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
  }
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

double writing(int runs, const qelm::tool::Mesh& mesh, const std::string& name) {
  try {
    const qelm::tool::MeshFormat format = qelm::tool::writableFormat(name);
    return milliseconds(runs, [&] {
      Nowhere file;
      writeMesh(mesh, format, file);
    });
  } catch (const qelm::tool::UsageError&) {
    return -1;  // a format that is read only
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) return 2;
  const int runs = std::max(1, std::atoi(arguments[1]));
  for (int k = 2; k < count; ++k) {
    const std::string name = arguments[k];
    qelm::tool::Mesh mesh;
    const double read = milliseconds(runs, [&] {
      mesh = triangulate(qelm::tool::readPolygonSoup(qelm::tool::toPath(name))).mesh;
    });
    std::printf("%s %.3f %.3f %d\n", name.c_str(), read, writing(runs, mesh, name),
                mesh.triangleCount());
  }
  return 0;
}
