// Options that several commands have in common.
#ifndef QELM_TOOLS_SHARED_OPTIONS_H
#define QELM_TOOLS_SHARED_OPTIONS_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "commands/picture_options.h"
#include "curves/levels.h"
#include "curves/sheet.h"
#include "fields/solve_job.h"
#include "terminal/console.h"

namespace qelm::tool {

/// A group of options that --help shows in one line; see HelpFormatter.
inline constexpr const char* kStreams = "qelm help files";

void addOutputOptions(CLI::App& command, OutputOptions& output);
void addMesh(CLI::App& command, std::string& mesh, bool& strict);
void addFixes(CLI::App& command, std::vector<std::string>& fixes, std::string& fixFile);

/// Mesh, conditions, load, --robust.
void addFieldOptions(CLI::App& command, FieldOptions& field);
/// --field, in place of a solve.
void addGivenField(CLI::App& command, FieldOptions& field);

void addLevels(CLI::App& command, LevelOptions& levels);
void addSimplify(CLI::App& command, std::string& simplify);

/// --view, with `lookedFrom` as its help, and --up.
void addViewOptions(CLI::App& command, PictureOptions& picture, const char* lookedFrom);
/// For drawings to scale: --scale, --paper, --mesh-unit.
void addSheetOptions(CLI::App& command, SheetOptions& sheet);
/// For what has colours: --title, --unit, --ramp, --range.
void addColourOptions(CLI::App& command, PictureOptions& picture);

}  // namespace qelm::tool

#endif
