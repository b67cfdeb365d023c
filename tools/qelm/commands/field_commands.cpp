#include "commands/field_commands.h"

#include <memory>

#include "commands/curves_command.h"
#include "commands/gradient_command.h"
#include "commands/heatmap_command.h"
#include "commands/shared_options.h"
#include "commands/solve_command.h"
#include "commands/view_command.h"
#include "terminal/help_texts.h"
#include "text/error.h"

namespace qelm::tool {
namespace {

void requireFixes(const FieldOptions& field) {
  if (field.fixes.empty() && field.fixFile.empty() && field.given.empty())
    throw UsageError(
        "no vertex is fixed; give at least one --fix SELECTOR=VALUE, such as --fix loop:0=0");
}

}  // namespace

void addSolve(CommandFrame& frame) {
  const auto options = std::make_shared<SolveOptions>();
  CLI::App& command =
      *frame.app.add_subcommand("solve", "Compute the smooth field between fixed values");
  addFieldOptions(command, options->field);
  options->field.several = true;
  command.add_option("-o,--output", options->output, "Write the field; - is the standard output")
      ->type_name("FIELD.csv");
  command.add_option("--format", options->format, "Whatever FIELD.csv is called")
      ->type_name("csv|npy|vtp|vtu")
      ->group(kStreams);
  command.add_flag("--gradient", options->gradient, "Write its gradient at the vertices as well");
  command.add_flag("--compare-plain", options->comparePlain,
                   "With --robust, say how far the plain field is off");
  addOutputOptions(command, frame.output);
  command.footer(footer(kSolveExamples, "conditions, selectors, loads, gradients, robust, files"));
  frame.onRun(command, [&frame, options] {
    requireFixes(options->field);
    runSolve(*options, frame.output);
  });
}

void addGradient(CommandFrame& frame) {
  const auto options = std::make_shared<GradientOptions>();
  CLI::App& command = *frame.app.add_subcommand(
      "gradient", "Write in which direction a field grows, and how steeply");
  addFieldOptions(command, options->field);
  addGivenField(command, options->field);
  command.add_option("--per", options->per, "What has one vector each")
      ->type_name("triangle|vertex");
  command.add_option("-o,--output", options->output, "As .csv, .npy, .ply, .vtp; or -")
      ->type_name("OUT");
  command.add_option("--format", options->format, "Whatever OUT is called")
      ->type_name("csv|npy|ply|vtp|vtu")
      ->group(kStreams);
  addOutputOptions(command, frame.output);
  command.footer(footer(kGradientExamples, "gradients, conditions, fields, loads, robust, output"));
  frame.onRun(command, [&frame, options] {
    requireFixes(options->field);
    runGradient(*options, frame.output);
  });
}

void addHeatmap(CommandFrame& frame) {
  const auto options = std::make_shared<HeatmapOptions>();
  CLI::App& command =
      *frame.app.add_subcommand("heatmap", "Write a mesh with its field in colours");
  addFieldOptions(command, options->field);
  addGivenField(command, options->field);
  command.add_option("-o,--output", options->output, "PATH.obj and two more; .ply, .glb, .vtp")
      ->type_name("PATH")
      ->required();
  command.add_option("--format", options->format, "Of one file, whatever PATH is")
      ->type_name("ply|glb|gltf|vtp|vtu")
      ->group(kStreams);
  addColourOptions(command, options->picture);
  addOutputOptions(command, frame.output);
  command.footer(footer(kHeatmapExamples, "conditions, fields, loads, robust, files, output"));
  frame.onRun(command, [&frame, options] {
    requireFixes(options->field);
    runHeatmap(*options, frame.output);
  });
}

void addCurves(CommandFrame& frame) {
  const auto options = std::make_shared<CurvesOptions>();
  CLI::App& command =
      *frame.app.add_subcommand("curves", "Cut a field's level curves: polylines, or a picture");
  addFieldOptions(command, options->field);
  options->field.several = true;
  addGivenField(command, options->field);
  addLevels(command, options->levels);
  addSimplify(command, options->simplify);
  command.add_option("-o,--output", options->outputs, "As .obj, .json, .svg, .dxf, ...; or -")
      ->type_name("OUT")
      ->allow_extra_args(false)
      ->required();
  command.add_option("--format", options->format, "Whatever OUT is called")
      ->type_name("obj|json|svg|dxf|...")
      ->group(kStreams);
  addViewOptions(command, options->picture, "From where an .svg looks at the mesh");
  addSheetOptions(command, options->sheet);
  addColourOptions(command, options->picture);
  addOutputOptions(command, frame.output);
  command.footer(
      footer(kCurvesExamples, "levels, conditions, fields, loads, robust, files, output"));
  frame.onRun(command, [&frame, options] {
    requireFixes(options->field);
    runCurves(*options, frame.output);
  });
}

void addView(CommandFrame& frame) {
  const auto options = std::make_shared<ViewOptions>();
  CLI::App& command =
      *frame.app.add_subcommand("view", "Write a page that shows the field in a browser");
  addFieldOptions(command, options->field);
  options->field.several = true;
  addGivenField(command, options->field);
  addLevels(command, options->levels);
  command.add_option("-o,--output", options->output, "Where it goes; - is the standard output")
      ->type_name("PAGE.html")
      ->required();
  command.add_option("--page", options->page, "Fill in this page, such as the live one")
      ->type_name("TEMPLATE.html")
      ->group("qelm help pictures");
  addViewOptions(command, options->picture, "From where the page looks at first");
  addColourOptions(command, options->picture);
  addOutputOptions(command, frame.output);
  command.footer(footer(kViewExamples, "levels, conditions, fields, loads, robust, output"));
  frame.onRun(command, [&frame, options] {
    requireFixes(options->field);
    runView(*options, frame.output);
  });
}

}  // namespace qelm::tool
