#include "fields/given_field.h"

#include <cstddef>

#include "conditions/field_file.h"
#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "mesh_files/load_mesh.h"
#include "text/error.h"

namespace qelm::tool {

SolvedField givenField(const FieldOptions& options, const Console& console) {
  if (!options.fixes.empty() || !options.fixFile.empty() || !options.load.empty() ||
      !options.robust.empty())
    throw UsageError(
        "--field takes the place of a solve: leave out --fix, --fix-file, --load and --robust");
  SolvedField solved;
  solved.meshName = options.mesh;
  solved.given = options.field;
  solved.steps = Steps(console);
  Steps& steps = solved.steps;
  solved.mesh = steps.run("read", [&] {
    return loadWeldedMesh({options.mesh, options.strict}, console);
  });
  const Mesh& mesh = solved.mesh;
  solved.fields = readField(parseFieldSource(options.field), usedVertices(mesh));
  // Nothing is divided by an area: thin triangles do no harm.
  const bool isRobust = true;
  naming(options.mesh + ": will not work", [&] {
    steps.run("check", [&] { checkMesh(mesh, {isRobust, options.strict}); });
  });
  solved.prescribed.heldBy.assign(static_cast<std::size_t>(mesh.vertexCount()), 0);
  // With every vertex fixed there is nothing to factorise.
  solved.prescribed.tags.assign(static_cast<std::size_t>(mesh.vertexCount()), 1);
  naming(options.mesh, [&] { solved.system.emplace(mesh, solved.prescribed.tags, false); });
  return solved;
}

}  // namespace qelm::tool
