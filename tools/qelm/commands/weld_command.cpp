#include "commands/weld_command.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <optional>

#include "fields/field_report.h"
#include "files/output_file.h"
#include "mesh/mesh_checks.h"
#include "mesh/weld.h"
#include "mesh_files/load_mesh.h"
#include "mesh_files/mesh_writer.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

using Json = nlohmann::ordered_json;

struct WeldRun {
  Mesh before;
  Welded after;
  double tolerance = 0;
  int lostToSinglePrecision = 0;
  Steps steps;
};

Json countsJson(const Mesh& mesh) {
  return {{"vertices", mesh.vertexCount()}, {"triangles", mesh.triangleCount()}};
}

void printJson(const WeldRun& run, const NewMeshOptions& options) {
  Json seconds = Json::object();
  for (const Step& step : run.steps.list()) seconds[step.name] = step.seconds;
  const Json summary = {{"mesh", options.mesh},
                        {"tolerance", run.tolerance},
                        {"before", countsJson(run.before)},
                        {"after", countsJson(run.after.mesh)},
                        {"droppedTriangles", run.after.droppedTriangles},
                        {"droppedVertices", run.after.droppedVertices},
                        {"lostToSinglePrecision", run.lostToSinglePrecision},
                        {"seconds", seconds},
                        {"results", Json::array({options.output})}};
  printData(summary.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

void printLines(const WeldRun& run, const NewMeshOptions& options, const Console& console) {
  console.line(fmt::format("mesh     {}: {} vertices, {} triangles", options.mesh,
                           run.before.vertexCount(), run.before.triangleCount()));
  console.line(fmt::format("welded   {} vertices, {} triangles, within {}",
                           run.after.mesh.vertexCount(), run.after.mesh.triangleCount(),
                           digits(run.tolerance)));
  console.line(
      fmt::format("dropped  {} triangles that collapsed or were repeated, {} vertices in "
                  "no triangle",
                  run.after.droppedTriangles, run.after.droppedVertices));
  console.line("time     " + describeTimes(run.steps));
  console.line("result   " + (options.output == "-" ? "standard output" : options.output));
}

}  // namespace

void runWeld(const NewMeshOptions& options, const OutputOptions& output) {
  if (output.json && options.output == "-")
    throw UsageError("the standard output takes the mesh (-o -) or --json, not both");
  const Console console(output);
  const MeshFormat format = writableFormat(options.output, options.format);
  WeldRun run;
  run.steps = Steps(console);
  const std::optional<double> tolerance = parseTolerance(options.tolerance);
  OutputFile file(options.output, output.inputs);
  run.before = run.steps.run("read", [&] {
    return loadMesh({options.mesh, options.strict}, console);
  });
  naming(options.mesh, [&] {
    run.steps.run("weld", [&] {
      checkFinite(run.before);
      run.tolerance = tolerance.value_or(kDefaultWeldPart * diagonal(run.before));
      run.after = weld(run.before, run.tolerance);
    });
  });
  run.lostToSinglePrecision = naming(options.mesh, [&] {
    return noteSinglePrecision(run.after.mesh, format, options.output, console);
  });
  run.steps.run("write", [&] {
    writeMesh(run.after.mesh, format, file);
    file.commit();
  });
  noteVerdict(run.after.mesh, console);
  if (output.json)
    printJson(run, options);
  else
    printLines(run, options, console);
}

}  // namespace qelm::tool
