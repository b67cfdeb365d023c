#include "commands/shared_options.h"

#include "mesh_files/mesh_reader.h"

namespace qelm::tool {
namespace {

// Groups that --help shows in one line; see HelpFormatter.
constexpr const char* kPictures = "qelm help pictures";
constexpr const char* kLevels = "qelm help levels";
constexpr const char* kColours = "qelm help colours";

}  // namespace

void addOutputOptions(CLI::App& command, OutputOptions& output) {
  CLI::Option* const quiet = command.add_flag("-q,--quiet", output.quiet, "Say nothing but errors");
  command.add_flag("-v,--verbose", output.verbose, "Say more: every step and its time")
      ->excludes(quiet);
  command.add_flag("--json", output.json, "Print the summary as JSON on the standard output");
}

void addMesh(CLI::App& command, std::string& mesh, bool& strict) {
  command.add_option("mesh", mesh, "Mesh file (see 'qelm help files'), or - (stdin)")
      ->type_name("MESH")
      ->required();
  // CLI11 takes options in the order in which they are added: MESH comes before --read-as.
  command
      .add_option_function<std::string>(
          "--read-as", [&mesh](const std::string& format) { mesh = standardInputAs(mesh, format); },
          "What the standard input holds: obj, ply, ...")
      ->type_name("FORMAT")
      ->group(kStreams);
  command.add_flag("--strict", strict, "Refuse what would be mended or left out");
}

void addFixes(CLI::App& command, std::vector<std::string>& fixes, std::string& fixFile) {
  command.add_option("--fix", fixes, "Hold vertices at a value; may be given often")
      ->type_name("SELECTOR=VALUE[:TAG]")
      ->allow_extra_args(false);
  command.add_option("--fix-file", fixFile, "Hold the vertices that a file names")
      ->type_name("FILE.csv");
}

void addFieldOptions(CLI::App& command, FieldOptions& field) {
  addMesh(command, field.mesh, field.strict);
  addFixes(command, field.fixes, field.fixFile);
  command.add_option("--load", field.load, "Add a load: by vertex, or uniform=Q by area")
      ->type_name("FILE.csv");
  command.add_flag("--robust", field.robust, "In range on bad triangles, too; auto: if needed");
}

void addGivenField(CLI::App& command, FieldOptions& field) {
  command.add_option("--field", field.given, "Take the field from a file instead")
      ->type_name("FILE[:COLUMN]")
      ->allow_extra_args(false);
}

void addLevels(CLI::App& command, LevelOptions& levels) {
  command.add_option("--levels", levels.count, "Cut at N levels, evenly spaced")->type_name("N");
  command.add_flag("--round", levels.round, "Take round levels, about as many");
  command.add_option("--at", levels.at, "Cut at these levels")->type_name("V,V,...");
  command.add_option("--every", levels.every, "Cut at all multiples of a step")->type_name("STEP");
  command.add_option("--spacing", levels.spacing, "Cut so that curves are this far apart")
      ->type_name("DISTANCE")
      ->group(kLevels);
  command
      .add_option("--through", levels.through, "Cut through the surface's point nearest to this")
      ->type_name("near:X,Y,Z")
      ->allow_extra_args(false)
      ->group(kLevels);
}

void addSimplify(CLI::App& command, std::string& simplify) {
  command.add_option("--simplify", simplify, "Drop points that are this near to those that stay")
      ->type_name("DISTANCE")
      ->group(kLevels);
}

void addViewOptions(CLI::App& command, PictureOptions& picture, const char* lookedFrom) {
  command.add_option("--view", picture.view, lookedFrom)
      ->type_name("best|AXIS|X,Y,Z")
      ->group(kPictures);
  command.add_option("--up", picture.up, "What points up")
      ->type_name("x|y|z|auto")
      ->group(kPictures);
}

void addSheetOptions(CLI::App& command, SheetOptions& sheet) {
  command.add_option("--scale", sheet.scale, "Draw the .svg to scale")
      ->type_name("1:N")
      ->group(kPictures);
  command.add_option("--paper", sheet.paper, "The page of a drawing to scale")
      ->type_name("A0...A4|letter|tabloid|W,H")
      ->group(kPictures);
  command.add_option("--mesh-unit", sheet.meshUnit, "What the mesh is measured in")
      ->type_name("mm|cm|m|in|ft")
      ->group(kPictures);
}

void addColourOptions(CLI::App& command, PictureOptions& picture) {
  command.add_option("--title", picture.caption.title, "A heading")
      ->type_name("TEXT")
      ->group(kColours);
  command.add_option("--unit", picture.caption.unit, "The values' unit")
      ->type_name("TEXT")
      ->group(kColours);
  command.add_option("--ramp", picture.colours.ramp, "The colours")
      ->type_name("viridis|magma|cividis|turbo|coolwarm|FILE.png")
      ->group(kColours);
  command.add_option("--range", picture.colours.range, "The values at the ends of the colours")
      ->type_name("LOW,HIGH")
      ->group(kColours);
}

}  // namespace qelm::tool
