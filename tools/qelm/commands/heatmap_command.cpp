#include "commands/heatmap_command.h"

#include <fmt/format.h>

#include <filesystem>
#include <span>

#include "colours/colour_ply.h"
#include "colours/colour_scale.h"
#include "colours/heat_obj.h"
#include "colours/ramp_image.h"
#include "fields/field_range.h"
#include "files/output_file.h"
#include "files/paths.h"
#include "mesh/used_part.h"
#include "text/error.h"

namespace qelm::tool {
namespace fs = std::filesystem;
namespace {

/// The files' path without extension.
fs::path basePath(const std::string& output) {
  fs::path path = toPath(output);
  if (lowerExtension(path) == ".obj") path.replace_extension();
  if (path.filename().empty() || path.filename() == "." || path.filename() == "..")
    throw UsageError(fmt::format("-o {}: name the files, without extension", output));
  return path;
}

std::string withExtension(fs::path base, const char* extension) {
  return toUtf8(base += extension);
}

/// Beside the OBJ file. Heat maps in one folder share a published ramp's image.
std::string rampNameFor(const fs::path& base, const Ramp& ramp) {
  const std::string name =
      ramp.name().empty() ? toUtf8(base.filename()) + "-ramp.PNG" : ramp.name() + ".PNG";
  return toUtf8(fs::path(base).replace_filename(toPath(name)));
}

/// Three files that appear together.
void runHeatObj(const HeatmapOptions& options, const OutputOptions& output) {
  const Console console(output);
  const fs::path base = basePath(options.output);
  // What cannot be written is better known before a long solve.
  const std::string objName = withExtension(base, ".obj");
  const std::string mtlName = withExtension(base, ".mtl");
  const ColourChoice colours(options.picture.colours);
  const std::string rampName = rampNameFor(base, colours.ramp());
  OutputFile obj(objName, output.inputs);
  OutputFile mtl(mtlName, output.inputs);
  OutputFile ramp(rampName, output.inputs);
  SolvedField solved = solveField(options.field, console);
  requireRange(solved, "colour");
  const ColourScale scale = colours.scaleFor(rangeOf(solved.fields), console);
  solved.steps.run("write", [&] {
    // A reader looks for the material from where the OBJ file lies.
    const UsedPart part = usedPart(solved.mesh);
    writeHeatObj(part.mesh, part.of(solved.field()),
                 part.of(std::span<const int>(solved.prescribed.tags)), scale,
                 options.picture.caption, withExtension(base.filename(), ".mtl"), obj);
    writeHeatMtl(toUtf8(toPath(rampName).filename()), mtl);
    ramp.write(rampImage(scale.ramp));
    // The OBJ file comes last: where it is, what it refers to is there as well.
    commitTogether({&ramp, &mtl, &obj});
  });
  if (toUtf8(base.filename()).find(' ') != std::string::npos)
    console.note("many viewers do not find a material file with a blank in its name");
  reportField(solved, {objName, mtlName, rampName}, output, console);
}

/// One file instead of three.
void runColourPly(const HeatmapOptions& options, const OutputOptions& output) {
  const Console console(output);
  const ColourChoice colours(options.picture.colours);
  OutputFile file(options.output, output.inputs);
  SolvedField solved = solveField(options.field, console);
  requireRange(solved, "colour");
  const ColourScale scale = colours.scaleFor(rangeOf(solved.fields), console);
  solved.steps.run("write", [&] {
    writeColourPly(solved.mesh, solved.field(), scale, options.picture.caption, file);
    file.commit();
  });
  reportField(solved, {options.output}, output, console);
}

}  // namespace

void runHeatmap(const HeatmapOptions& options, const OutputOptions& output) {
  const std::string format =
      promisedFormat(options.output, {".obj", ".ply"},
                     "'heatmap' writes .obj (with .mtl and viridis.PNG beside it) or .ply");
  if (format == ".ply") return runColourPly(options, output);
  runHeatObj(options, output);
}

}  // namespace qelm::tool
