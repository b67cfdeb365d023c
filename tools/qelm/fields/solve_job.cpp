#include "fields/solve_job.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "conditions/vertex_csv.h"
#include "fields/field_range.h"
#include "fields/forecast.h"
#include "fields/given_field.h"
#include "fields/uniform_load.h"
#include "fields/verdict.h"
#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "mesh_files/load_mesh.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

/// The steps from a mesh file to its fields. Each step fills its part of the result.
class SolveJob {
 public:
  SolveJob(const FieldOptions& options, const Console& console)
      : options_(options), console_(console), notWorking_(options.mesh + ": will not work") {}

  SolvedField run() {
    parse();
    read();
    check();
    solve();
    noteDoubts();
    return std::move(solved_);
  }

 private:
  void parse() {
    solved_.meshName = options_.mesh;
    solved_.steps = Steps(console_);
    for (const std::string& fix : options_.fixes) solved_.conditions.push_back(parseCondition(fix));
    if (!options_.several && fieldCount(solved_.conditions) > 1)
      throw UsageError(
          "a --fix has several values, but this command takes one field; 'solve', 'curves' and "
          "'view' take several");
    construction_ = parseConstruction(options_.robust);
    solved_.loadPerArea = parseUniformLoad(options_.load);
  }

  void read() {
    solved_.mesh = solved_.steps.run("read", [this] {
      return loadWeldedMesh({options_.mesh, options_.strict}, console_);
    });
    const std::vector<bool> used = usedVertices(solved_.mesh);
    if (solved_.loadPerArea)
      solved_.load = uniformLoad(solved_.mesh, *solved_.loadPerArea);
    else if (!options_.load.empty())
      solved_.load = readLoad(options_.load, used);
    if (!options_.fixFile.empty()) fromFile_ = readFixes(options_.fixFile, used);
    solved_.fromFile = asInt(fromFile_.size());
  }

  void check() {
    const Mesh& mesh = solved_.mesh;
    solved_.steps.run("check", [&] {
      naming(notWorking_, [&] {
        checkMesh(mesh, {construction_ != Construction::plain, options_.strict});
      });
      solved_.prescribed =
          naming(options_.mesh, [&] { return prescribe(mesh, solved_.conditions, fromFile_); });
      naming(notWorking_, [&] { checkEveryPartIsFixed(mesh, solved_.prescribed.tags); });
      if (construction_ != Construction::plain)
        solved_.robust = robustReport(mesh, solved_.prescribed.tags);
    });
    for (const std::string& note : solved_.prescribed.notes) console_.note(note);
  }

  /// A mesh that has no report is left to the constructor, which says what is wrong.
  bool isRobust() const {
    const bool isWorthIt = !solved_.robust || solved_.robust->changed != 0;
    return construction_ == Construction::robust ||
           (construction_ == Construction::automatic && isWorthIt);
  }

  void solve() {
    const Mesh& mesh = solved_.mesh;
    const Prescribed& prescribed = solved_.prescribed;
    const auto expected =
        naming(options_.mesh, [&] { return forecast(mesh, prescribed.tags, isRobust()); });
    if (expected)
      if (const auto wait = describeWait(*expected)) console_.note(*wait);
    naming(notWorking_, [&] {
      solved_.steps.run(
          "construct", [&] { solved_.system.emplace(mesh, prescribed.tags, isRobust()); },
          expected ? secondsOf(*expected) : 0);
      solved_.fields = solved_.steps.run("solve", [&] {
        solved_.error = measuredError(*solved_.system, mesh);
        return solved_.system->solve(mesh, prescribed.values, solved_.load);
      });
    });
  }

  void noteDoubts() const {
    if (solved_.error > 0)
      console_.note(
          fmt::format("{}: {}", options_.mesh, describeError(solved_.error, solved_.mesh)));
    for (std::size_t k = 0; k < solved_.fieldCount(); ++k)
      if (const auto overshoot = overshootOf(solved_, k))
        console_.note((solved_.fieldCount() > 1 ? fmt::format("field {}: ", k + 1) : "") +
                      describeOvershoot(*overshoot, solved_.mesh));
  }

  const FieldOptions& options_;
  const Console& console_;
  Construction construction_ = Construction::plain;
  std::string notWorking_;  ///< in front of messages
  std::vector<FixedVertex> fromFile_;
  SolvedField solved_;
};

}  // namespace

std::optional<Overshoot> overshootOf(const SolvedField& solved, std::size_t k) {
  if (!solved.load.empty() || !solved.given.empty()) return {};
  return overshootOf(solved.field(k), solved.prescribed, k);
}

std::string SolvedField::fieldName(std::size_t k) const {
  return given.empty() ? fmt::format("{}", k + 1) : given[k];
}

SolvedField solveField(const FieldOptions& options, const Console& console) {
  if (!options.given.empty()) return givenFields(options, console);
  return SolveJob(options, console).run();
}

void requireRange(const SolvedField& solved, const char* use) {
  // A field narrower than this part of its largest value is constant but for rounding: stretched
  // over all colours or levels, that would show as noise.
  constexpr double kConstant = 1e-12;
  for (std::size_t k = 0; k < solved.fieldCount(); ++k) {
    const FieldRange range = rangeOf(solved.field(k));
    if (range.high - range.low > kConstant * std::max(std::abs(range.low), std::abs(range.high)))
      continue;
    throw RequestError(fmt::format(
        "{}: the field{} is {} everywhere, so there is no range to {}{}", solved.meshName,
        solved.fieldCount() > 1 ? fmt::format(" {}", solved.fieldName(k)) : "", digits(range.low),
        use, solved.given.empty() ? "; fix vertices at two different values at least" : ""));
  }
}

}  // namespace qelm::tool
