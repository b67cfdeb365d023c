#include "fields/given_field.h"

#include <cstddef>
#include <string>
#include <vector>

#include "conditions/field_file.h"
#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "mesh_files/load_mesh.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {

SolvedField givenFields(const FieldOptions& options, const Console& console) {
  if (!options.fixes.empty() || !options.fixFile.empty() || !options.load.empty() ||
      !options.robust.empty())
    throw UsageError(
        "--field takes the place of a solve: leave out --fix, --fix-file, --load and --robust");
  if (!options.several && options.given.size() > 1)
    throw UsageError(
        "--field is given several times, but this command takes one field; 'curves' "
        "and 'view' take several");
  SolvedField solved;
  solved.meshName = options.mesh;
  solved.given = options.given;
  solved.steps = Steps(console);
  Steps& steps = solved.steps;
  solved.mesh = steps.run("read", [&] {
    return loadWeldedMesh({options.mesh, options.strict}, console);
  });
  const Mesh& mesh = solved.mesh;
  const std::vector<bool> used = usedVertices(mesh);
  for (const std::string& given : options.given) {
    const std::vector<double> field = readField(parseFieldSource(given), used);
    solved.fields.insert(solved.fields.end(), field.begin(), field.end());
  }
  solved.prescribed.fieldCount = options.given.size();
  // Curves divide by no area: thin triangles do no harm.
  const bool isRobust = true;
  naming(options.mesh + ": will not work", [&] {
    steps.run("check", [&] { checkMesh(mesh, {isRobust, options.strict}); });
  });
  solved.prescribed.prescribedBy.assign(asIndex(mesh.vertexCount()), 0);
  // The handle is only there for its curves: with every vertex tagged, nothing is factorised.
  solved.prescribed.tags.assign(asIndex(mesh.vertexCount()), 1);
  naming(options.mesh, [&] { solved.system.emplace(mesh, solved.prescribed.tags, false); });
  return solved;
}

}  // namespace qelm::tool
