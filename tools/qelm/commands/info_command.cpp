#include "commands/info_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "fields/field_report.h"
#include "files/output_file.h"
#include "mesh/mesh_checks.h"
#include "mesh/mesh_facts.h"
#include "mesh/vec3.h"
#include "mesh_files/load_mesh.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

using Json = nlohmann::ordered_json;

// People look at a list of so many parts or loops; --json has them all.
constexpr std::size_t kShown = 20;

Point middle(const Mesh& mesh, const std::vector<int>& vertices) {
  Point sum{};
  for (const int v : vertices)
    for (std::size_t k = 0; k < 3; ++k)
      sum[k] += mesh.point(v)[k] / static_cast<double>(vertices.size());
  return sum;
}

std::string plural(std::size_t count, const char* noun) {
  return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string partsText(const Mesh& mesh, const MeshFacts& facts) {
  std::string text = fmt::format("parts      {}\n", facts.parts.size());
  if (facts.parts.size() < 2) return text;
  for (std::size_t k = 0; k < std::min(facts.parts.size(), kShown); ++k) {
    const MeshPart& part = facts.parts[k];
    text += fmt::format("  {:<9}{} triangles, {} vertices, with {}\n", fmt::format("part:{}", k),
                        part.triangleCount, part.vertexCount, describeVertex(mesh, part.vertex));
  }
  return facts.parts.size() > kShown ? text + "  ...\n" : text;
}

std::string loopsText(const Mesh& mesh, const MeshFacts& facts) {
  if (facts.loops.empty()) return "boundary   none: the mesh is closed\n";
  // Middles are rounded to this part of the diagonal: enough digits to tell loops apart.
  constexpr double kStep = 1e-6;
  const double step = kStep * length(facts.box.size());
  std::string text =
      fmt::format("boundary   {}, longest first\n", plural(facts.loops.size(), "loop"));
  for (std::size_t k = 0; k < std::min(facts.loops.size(), kShown); ++k) {
    const BoundaryLoop& loop = facts.loops[k];
    const Point p = middle(mesh, loop.vertices);
    text += fmt::format("  {:<9}{} long, {} vertices, round ({}, {}, {}){}\n",
                        fmt::format("loop:{}", k), digits(loop.length), loop.vertices.size(),
                        digits(p[0], step), digits(p[1], step), digits(p[2], step),
                        loop.closed ? "" : ", open: it ends where three triangles meet");
  }
  return facts.loops.size() > kShown ? text + "  ...\n" : text;
}

/// What the file itself names: a line for each, as the selector is written.
std::string namesText(const Attributes& attributes) {
  std::string text;
  const auto add = [&text](const char* title, const auto& list, const char* kind, auto describe) {
    if (list.empty()) return;
    text += fmt::format("{:<11}{}\n", title, list.size());
    for (std::size_t k = 0; k < std::min(list.size(), kShown); ++k)
      text += fmt::format("  {}:{}  {}\n", kind, list[k].name, describe(list[k]));
    if (list.size() > kShown) text += "  ...\n";
  };
  const auto count = [](const VertexSet& set) {
    return fmt::format("{} vertices", set.vertices.size());
  };
  add("groups", attributes.groups, "group", count);
  add("materials", attributes.materials, "material", count);
  add("properties", attributes.arrays, "property", [](const VertexArray& array) {
    const auto [low, high] = std::minmax_element(array.values.begin(), array.values.end());
    return fmt::format("{} to {}", *low, *high);
  });
  return text;
}

std::string textOf(const std::string& name, const Mesh& mesh, const MeshFacts& facts) {
  const Point size = facts.box.size();
  std::string text = fmt::format(
      "{}\nvertices   {}\ntriangles  {}\n"
      "box        {},{},{} to {},{},{}\n"
      "size       {} x {} x {}\narea       {}\n"
      "edges      {}, {} to {} long, {} on average\n",
      name, mesh.vertexCount(), mesh.triangleCount(), facts.box.low[0], facts.box.low[1],
      facts.box.low[2], facts.box.high[0], facts.box.high[1], facts.box.high[2], digits(size[0]),
      digits(size[1]), digits(size[2]), digits(facts.area), facts.edges.count,
      digits(facts.edges.shortest), digits(facts.edges.longest), digits(facts.edges.mean));
  if (!facts.unused.empty())
    text += fmt::format("unused     {}, the first is {}\n", facts.unused.size(),
                        describeVertex(mesh, facts.unused[0]));
  return text + partsText(mesh, facts) + loopsText(mesh, facts) + namesText(mesh.attributes);
}

Json partsJson(const MeshFacts& facts) {
  Json parts = Json::array();
  for (std::size_t k = 0; k < facts.parts.size(); ++k)
    parts.push_back({{"selector", fmt::format("part:{}", k)},
                     {"lowestVertex", facts.parts[k].vertex},
                     {"vertices", facts.parts[k].vertexCount},
                     {"triangles", facts.parts[k].triangleCount}});
  return parts;
}

Json loopsJson(const Mesh& mesh, const MeshFacts& facts) {
  Json loops = Json::array();
  for (std::size_t k = 0; k < facts.loops.size(); ++k)
    loops.push_back({{"selector", fmt::format("loop:{}", k)},
                     {"length", facts.loops[k].length},
                     {"vertices", facts.loops[k].vertices.size()},
                     {"closed", facts.loops[k].closed},
                     {"middle", middle(mesh, facts.loops[k].vertices)}});
  return loops;
}

Json setsJson(const std::vector<VertexSet>& sets) {
  Json json = Json::array();
  for (const VertexSet& set : sets)
    json.push_back({{"name", set.name}, {"vertices", set.vertices.size()}});
  return json;
}

Json propertiesJson(const std::vector<VertexArray>& arrays) {
  Json properties = Json::array();
  for (const VertexArray& array : arrays) {
    const auto [low, high] = std::minmax_element(array.values.begin(), array.values.end());
    properties.push_back({{"name", array.name}, {"min", *low}, {"max", *high}});
  }
  return properties;
}

Json jsonOf(const std::string& name, const Mesh& mesh, const MeshFacts& facts) {
  return {{"mesh", name},
          {"vertices", mesh.vertexCount()},
          {"triangles", mesh.triangleCount()},
          {"box", {{"min", facts.box.low}, {"max", facts.box.high}}},
          {"area", facts.area},
          {"edges",
           {{"count", facts.edges.count},
            {"shortest", facts.edges.shortest},
            {"longest", facts.edges.longest},
            {"mean", facts.edges.mean}}},
          {"unusedVertices", facts.unused.size()},
          {"parts", partsJson(facts)},
          {"loops", loopsJson(mesh, facts)},
          {"groups", setsJson(mesh.attributes.groups)},
          {"materials", setsJson(mesh.attributes.materials)},
          {"properties", propertiesJson(mesh.attributes.arrays)}};
}

}  // namespace

void runInfo(const InfoOptions& options, const OutputOptions& output) {
  const Console console(output);
  Steps steps(console);
  const Mesh mesh = steps.run("read", [&] {
    return loadWeldedMesh({options.mesh, options.strict}, console);
  });
  const MeshFacts facts = naming(options.mesh, [&] {
    checkFinite(mesh);
    return steps.run("measure", [&] { return factsOf(mesh); });
  });
  if (output.json)
    printJson(jsonOf(options.mesh, mesh, facts));
  else
    printData(printable(textOf(options.mesh, mesh, facts)));
}

}  // namespace qelm::tool
