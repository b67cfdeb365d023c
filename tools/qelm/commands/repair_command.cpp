#include "commands/repair_command.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "fields/field_report.h"
#include "files/output_file.h"
#include "mesh/mesh_checks.h"
#include "mesh/weld.h"
#include "mesh_files/load_mesh.h"
#include "repair/repair.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

using Json = nlohmann::ordered_json;

struct RepairRun {
  int vertices = 0;  ///< before
  int triangles = 0;
  double tolerance = 0;
  Repaired after;
  int lostToSinglePrecision = 0;
  Steps steps;
};

Json summaryOf(const RepairRun& run, const NewMeshOptions& options) {
  const Repaired& after = run.after;
  Json seconds = Json::object();
  for (const Step& step : run.steps.list()) seconds[step.name] = step.seconds;
  return {{"mesh", options.mesh},
          {"tolerance", run.tolerance},
          {"before", {{"vertices", run.vertices}, {"triangles", run.triangles}}},
          {"after",
           {{"vertices", after.mesh.vertexCount()}, {"triangles", after.mesh.triangleCount()}}},
          {"mergedVertices", after.mergedVertices},
          {"collapsedEdges", after.flat.collapsedEdges},
          {"splitSides", after.flat.splitSides},
          {"closedTJoints", after.joints},
          {"droppedTriangles", after.droppedTriangles},
          {"droppedVertices", after.unusedVertices},
          {"turnedTriangles", after.orientation.turned},
          {"flatTrianglesLeft", after.flat.left},
          {"opposedEdgesLeft", after.orientation.opposed},
          {"lostToSinglePrecision", run.lostToSinglePrecision},
          {"seconds", seconds},
          {"results", Json::array({options.output})}};
}

void printLines(const RepairRun& run, const NewMeshOptions& options, const Console& console) {
  const Repaired& after = run.after;
  console.line(fmt::format("mesh     {}: {} vertices, {} triangles", options.mesh, run.vertices,
                           run.triangles));
  console.line(fmt::format("repaired {} vertices, {} triangles, within {}",
                           after.mesh.vertexCount(), after.mesh.triangleCount(),
                           digits(run.tolerance)));
  const auto done = [&console](int count, const char* what) {
    console.line(fmt::format("{:>9} {}", count, what));
  };
  done(after.mergedVertices, "vertices merged with another one");
  done(after.flat.collapsedEdges, "short sides of flat triangles collapsed");
  done(after.flat.splitSides, "flat triangles removed by splitting what is beyond their long side");
  done(after.joints, "vertices set into sides that pass them (T-joints)");
  done(after.droppedTriangles, "triangles dropped that collapsed or were repeated");
  done(after.unusedVertices, "vertices dropped that were in no triangle");
  done(after.orientation.turned, "triangles turned over");
  console.line("time     " + describeTimes(run.steps));
  console.line("result   " + (options.output == "-" ? "standard output" : options.output));
}

void noteWhatIsLeft(const Repaired& after, const Console& console) {
  if (after.flat.left > 0)
    console.note(
        fmt::format("{} flat triangles could not be removed; the surface folds over "
                    "itself there",
                    after.flat.left));
  if (after.orientation.opposed > 0)
    console.note(
        fmt::format("the triangles at {} sides cannot be oriented alike, as on a Moebius "
                    "strip; fields do not mind",
                    after.orientation.opposed));
  noteVerdict(after.mesh, console);
}

}  // namespace

void runRepair(const NewMeshOptions& options, const OutputOptions& output) {
  if (output.json && options.output == "-")
    throw UsageError("the standard output takes the mesh (-o -) or --json, not both");
  const Console console(output);
  const MeshFormat format = writableFormat(options.output, options.format);
  const std::optional<double> tolerance = parseTolerance(options.tolerance);
  RepairRun run;
  run.steps = Steps(console);
  OutputFile file(options.output, output.inputs);
  const Mesh before = run.steps.run("read", [&] {
    return loadMesh({options.mesh, options.strict}, console);
  });
  naming(options.mesh, [&] {
    run.vertices = before.vertexCount();
    run.triangles = before.triangleCount();
    checkFinite(before);
    run.tolerance = tolerance.value_or(kDefaultWeldPart * diagonal(before));
    run.after = run.steps.run("repair", [&] { return repair(before, run.tolerance); });
    run.lostToSinglePrecision =
        noteSinglePrecision(run.after.mesh, format, options.output, console);
  });
  run.steps.run("write", [&] {
    writeMesh(run.after.mesh, format, file);
    file.commit();
  });
  noteWhatIsLeft(run.after, console);
  if (output.json)
    printJson(summaryOf(run, options));
  else
    printLines(run, options, console);
}

}  // namespace qelm::tool
