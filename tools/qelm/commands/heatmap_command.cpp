#include "commands/heatmap_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "colours/colour_ply.h"
#include "colours/colour_scale.h"
#include "colours/heat_gltf.h"
#include "colours/heat_obj.h"
#include "colours/ramp_image.h"
#include "curves/upright.h"
#include "fields/field_range.h"
#include "fields/field_report.h"
#include "files/output_file.h"
#include "files/paths.h"
#include "mesh/used_part.h"
#include "mesh_files/vtk_writer.h"
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

/// Writes OBJ, MTL and the ramp's image, which appear together.
void runHeatObj(const HeatmapOptions& options, const OutputOptions& output) {
  const Console console(output);
  const fs::path base = basePath(options.output);
  // Files are opened before the solve: what cannot be written is better known at once.
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
    // The material's name is relative to the OBJ file.
    const UsedPart part = usedPart(solved.mesh);
    writeHeatObj(part.mesh, part.of(solved.field()),
                 part.of(std::span<const int>(solved.prescribed.tags)), scale,
                 options.picture.caption, withExtension(base.filename(), ".mtl"), obj);
    writeHeatMtl(toUtf8(toPath(rampName).filename()), mtl);
    ramp.write(rampImage(scale.ramp));
    // The OBJ file comes last: when it is there, so are the files that it refers to.
    commitTogether({&ramp, &mtl, &obj});
  });
  if (toUtf8(base.filename()).find(' ') != std::string::npos)
    console.note("many viewers do not find a material file with a blank in its name");
  reportField(solved, {objName, mtlName, rampName}, output, console);
}

void writeOneFile(const SolvedField& solved, const std::string& format, const ColourScale& scale,
                  const Caption& caption, OutputFile& file) {
  if (format == ".ply") return writeColourPly(solved.mesh, solved.field(), scale, caption, file);
  if (format == ".glb" || format == ".gltf") {
    const UsedPart part = usedPart(solved.mesh);
    return writeHeatGltf(part.mesh, part.of(solved.field()), scale, caption,
                         upAxis(std::nullopt, solved.meshName, part.mesh), format == ".glb", file);
  }
  const std::array<VtkColumn, 1> columns = {{{"value", solved.field()}}};
  std::string comment = caption.title;
  if (!caption.unit.empty())
    comment += fmt::format("{}value in {}", comment.empty() ? "" : "; ", caption.unit);
  writeVtkMesh(solved.mesh, columns, {}, format == ".vtu", file, comment);
}

/// One file instead of three.
void runOneFile(const HeatmapOptions& options, const OutputOptions& output,
                const std::string& format) {
  const Console console(output);
  const ColourChoice colours(options.picture.colours);
  OutputFile file(options.output, output.inputs);
  SolvedField solved = solveField(options.field, console);
  requireRange(solved, "colour");
  const ColourScale scale = colours.scaleFor(rangeOf(solved.fields), console);
  solved.steps.run("write", [&] {
    writeOneFile(solved, format, scale, options.picture.caption, file);
    file.commit();
  });
  reportField(solved, {options.output == "-" ? "standard output" : options.output}, output,
              console);
}

}  // namespace

void runHeatmap(const HeatmapOptions& options, const OutputOptions& output) {
  const std::vector<std::string_view> singles = {".ply", ".glb", ".gltf", ".vtp", ".vtu"};
  if (options.output == "-" && options.format.empty())
    throw UsageError("-o -: say which kind of file, as in --format ply");
  if (output.json && options.output == "-")
    throw UsageError("the standard output takes the mesh (-o -) or --json, not both");
  if (!options.format.empty()) {
    if (std::find(singles.begin(), singles.end(), "." + options.format) == singles.end())
      throw UsageError(
          fmt::format("--format {}: one of ply, glb, gltf, vtp and vtu is needed", options.format));
    return runOneFile(options, output, "." + options.format);
  }
  const std::string format =
      promisedFormat(options.output, {".obj", ".ply", ".glb", ".gltf", ".vtp", ".vtu"},
                     "'heatmap' writes .obj (with .mtl and viridis.PNG beside it), .ply, .glb, "
                     ".gltf, .vtp or .vtu");
  if (format.empty() || format == ".obj") return runHeatObj(options, output);
  runOneFile(options, output, format);
}

}  // namespace qelm::tool
