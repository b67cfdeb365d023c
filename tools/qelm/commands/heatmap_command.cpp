#include "commands/heatmap_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "colours/colour_ply.h"
#include "colours/ramp_image.h"
#include "files/output_file.h"
#include "files/output_folder.h"
#include "files/paths.h"
#include "qelm.h"
#include "text/error.h"

namespace qelm::tool {
namespace fs = std::filesystem;
namespace {

// What the library writes beside the vertices and triangles: the two lines in
// front, and the material.
constexpr std::ptrdiff_t kObjHeadLines = 2;
constexpr std::ptrdiff_t kMtlLines = 8;

/// The files' path without extension.
fs::path basePath(const std::string& output) {
  fs::path path = toPath(output);
  if (lowerExtension(path) == ".obj") path.replace_extension();
  if (path.filename().empty() || path.filename() == "." || path.filename() == "..")
    throw UsageError(fmt::format("-o {}: name the files, without extension", output));
  return path;
}

fs::path withExtension(fs::path base, const char* extension) { return base += extension; }

/// The library indexes fields by its own order: fixed vertices first, in the
/// mesh's order, then the free ones from the back.
std::vector<double> inSystemOrder(std::span<const double> field, const std::vector<int>& tags) {
  std::vector<double> ordered(field.size());
  std::size_t front = 0;
  std::size_t back = field.size();
  for (std::size_t i = 0; i < field.size(); ++i)
    ordered[tags[i] != 0 ? front++ : --back] = field[i];
  return ordered;
}

/// wobj() has no result: what it wrote is counted instead, so that a full disk shows.
void checkLines(const fs::path& file, std::ptrdiff_t expected, const fs::path& target) {
  std::error_code ignored;
  std::ptrdiff_t lines = 0;
  if (fs::exists(file, ignored)) {
    const std::string text = readFile(file);
    lines = std::count(text.begin(), text.end(), '\n');
  }
  if (lines != expected)
    throw OutputError(
        fmt::format("{}: writing failed; is there room on the disk?", toUtf8(target)));
}

void writeRamp(const fs::path& path) {
  OutputFile file(toUtf8(path));
  file.write(rampImage());
  file.commit();
}

// The export names its material file by the path it is given, and a reader looks
// for it from where the OBJ file lies: so the name alone is given, from within
// the folder.
void writeObj(const SolvedField& solved, const fs::path& folder, const fs::path& name) {
  const std::vector<double> field = inSystemOrder(solved.field(), solved.prescribed.tags);
  const std::string narrow = toNarrow(name);
  const WorkingFolder here(folder);
  wobj(solved.system->handle(), field.data(), narrow.c_str());
}

void writeHeatmap(const SolvedField& solved, const fs::path& base, OutputFolder& folder) {
  const fs::path name = base.filename();
  const fs::path obj = withExtension(name, ".obj");
  const fs::path mtl = withExtension(name, ".mtl");
  writeObj(solved, folder.path(), name);
  checkLines(
      folder.path() / obj,
      kObjHeadLines + 2 * std::ptrdiff_t{solved.mesh.vertexCount()} + solved.mesh.triangleCount(),
      withExtension(base, ".obj"));
  checkLines(folder.path() / mtl, kMtlLines, withExtension(base, ".mtl"));
  writeRamp(folder.path() / kRampFileName);
  // The OBJ file comes last: where it is, what it refers to is there as well.
  folder.publish({kRampFileName, mtl, obj});
}

/// One file instead of three.
void runColourPly(const HeatmapOptions& options, const OutputOptions& output) {
  const Console console(output);
  refuseToOverwrite(options.field.mesh, toPath(options.output));
  OutputFile file(options.output);
  SolvedField solved = solveField(options.field, console);
  requireRange(solved, "colour");
  solved.steps.run("write", [&] {
    writeColourPly(solved.mesh, solved.field(), file);
    file.commit();
  });
  reportField(solved, {options.output}, output, console);
}

}  // namespace

void runHeatmap(const HeatmapOptions& options, const OutputOptions& output) {
  if (lowerExtension(toPath(options.output)) == ".ply") return runColourPly(options, output);
  const Console console(output);
  const fs::path base = basePath(options.output);
  refuseToOverwrite(options.field.mesh, withExtension(base, ".obj"));
  // What cannot be written is better known before a long solve.
  toNarrow(base.filename());
  OutputFolder folder(base);
  SolvedField solved = solveField(options.field, console);
  requireRange(solved, "colour");
  solved.steps.run("write", [&] { writeHeatmap(solved, base, folder); });
  if (toUtf8(base.filename()).find(' ') != std::string::npos)
    console.note("many viewers do not find a material file with a blank in its name");
  reportField(solved,
              {toUtf8(withExtension(base, ".obj")), toUtf8(withExtension(base, ".mtl")),
               toUtf8(fs::path(base).replace_filename(kRampFileName))},
              output, console);
}

}  // namespace qelm::tool
