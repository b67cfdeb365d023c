// The heat-map export writes two files, one after the other, and a line to the standard error
// stream when one cannot be opened.
#include <iostream>
#include <string>

#include "export/heat_map.h"
#include "export/output_file.h"
#include "interface/mesh_system.h"
#include "qelm.h"

namespace {

/// Opens path + extension, lets write(stream) fill it, and closes it. False, with a
/// message that names the bare path, if it cannot be opened. Failures after that,
/// in writing or closing, are not reported; this is intended.
template <class Write>
bool writeFile(const std::string& path, const char* extension, Write write) {
  std::ofstream file = qelm::openForWriting(path + extension);
  if (!file.is_open()) {
    std::cerr << "couldn't open file " << path << " for writing." << std::endl;
    return false;
  }
  write(file);
  file.close();
  return true;
}

}  // namespace

extern "C" void wobj(const MeshSystem* handle, const double* field, const char* path) {
  if (handle == nullptr) return;
  const std::string base = path;
  const qelm::HeatMap map{
      *handle->vertices, *handle->triangles, {field, handle->vertices->size() / 3}};
  if (!writeFile(base, ".obj", [&](std::ostream& out) { qelm::writeObj(out, map, base); })) return;
  writeFile(base, ".mtl", [](std::ostream& out) { qelm::writeMtl(out); });
}
