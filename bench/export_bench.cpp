// The heat-map export beside its plain form, line by line through a stream, and the
// mere formatting of the same doubles into memory.
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "export/plain_heat_map.h"
#include "qelm.h"
#include "support/contender.h"

namespace {

using qelm::bench::Case;
using qelm::bench::Run;

struct Work {
  MeshSystem system;
  qelm::test::Field field;
  std::string path = (std::filesystem::temp_directory_path() / "qelm-export-bench").string();

  Work() = default;
  Work(Work&&) = default;
  ~Work() {
    std::remove((path + ".obj").c_str());
    std::remove((path + ".mtl").c_str());
  }
};

std::shared_ptr<const Work> workOf(const Case& c) {
  return qelm::bench::sharedBetweenContenders<Work>(c, [](const Case& which) {
    qelm::test::Mesh mesh = makeMesh(which);
    Work work;
    work.field = qelm::bench::waves(mesh);
    work.system.vertices = std::make_shared<const std::vector<double>>(std::move(mesh.vertices));
    work.system.triangles =
        std::make_shared<const std::vector<std::int32_t>>(std::move(mesh.triangles));
    return work;
  });
}

Run heatMap(const Case& c) {
  return [work = workOf(c)] {
    wobj(&work->system, work->field.data(), work->path.c_str());
    return std::filesystem::file_size(work->path + ".obj");
  };
}

Run plain(const Case& c) {
  return [work = workOf(c)] {
    {
      std::ofstream obj(work->path + ".obj");
      qelm::test::plainObj(obj, work->system, work->field, work->path);
    }
    return std::filesystem::file_size(work->path + ".obj");
  };
}

/// Coordinates and field, with no separators, no triangles and no file.
Run toChars(const Case& c) {
  const auto work = workOf(c);
  return [work, memory = std::make_shared<std::vector<char>>(64 * work->field.size())] {
    char* to = memory->data();
    char* const end = to + memory->size();
    const auto write = [&](double x) {
      to = std::to_chars(to, end, x, std::chars_format::general, 6).ptr;
    };
    for (const double x : *work->system.vertices) write(x);
    for (const double x : work->field) write(x);
    return static_cast<std::size_t>(to - memory->data());
  };
}

}  // namespace

int main(int argumentCount, char** arguments) {
  using qelm::bench::addContender;
  addContender("export", "qelm", heatMap);
  addContender("export", "plain", plain, qelm::bench::upTo(1'000'000));
  addContender("export", "to_chars", toChars, qelm::bench::upTo(1'000'000));
  return qelm::bench::runContenders(argumentCount, arguments);
}
