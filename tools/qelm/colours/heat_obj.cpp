#include "colours/heat_obj.h"

#include <cstddef>
#include <vector>

#include "text/index.h"
#include "text/text.h"
#include "text/text_block.h"

namespace qelm::tool {
namespace {

/// The mesh's vertices in system order, as src/mesh/numbering has it.
std::vector<int> systemOrder(std::span<const int> tags) {
  std::vector<int> order(tags.size());
  std::size_t front = 0;
  std::size_t back = tags.size();
  for (std::size_t i = 0; i < tags.size(); ++i) order[tags[i] != 0 ? front++ : --back] = asInt(i);
  return order;
}

/// Says which values the texture coordinates stand for.
void writeComments(const ColourScale& scale, const Caption& caption, TextBlock& block) {
  if (!caption.title.empty()) block.text("# {}\n", oneLine(caption.title));
  if (!caption.unit.empty() || scale.isFixed)
    block.text("# u = 1 at {0}{2}, u = 0 at {1}{2}\n", scale.low, scale.high,
               oneLine(caption.unitAfter()));
}

}  // namespace

void writeHeatObj(const Mesh& mesh, std::span<const double> field, std::span<const int> tags,
                  const ColourScale& scale, const Caption& caption, const std::string& material,
                  ByteSink& file) {
  const std::vector<int> order = systemOrder(tags);
  TextBlock block(file);
  writeComments(scale, caption, block);
  block.text("mtllib {}\nusemtl Heat\n", material);
  for (const int v : order) {
    const Point p = mesh.point(v);
    block.text("v {} {} {}\n", p[0], p[1], p[2]);
  }
  for (const int v : order) block.text("vt {} 0.5\n", 1 - scale.part(field[asIndex(v)]));
  std::vector<int> number(order.size());  // of each vertex in the file, from 1
  for (std::size_t k = 0; k < order.size(); ++k) number[asIndex(order[k])] = asInt(k) + 1;
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    const auto at = [&](std::size_t k) { return number[asIndex(c[k])]; };
    block.text("f {0}/{0} {1}/{1} {2}/{2}\n", at(0), at(1), at(2));
  }
  block.flush();
}

// The blanks and tabs at the ends belong to the lines.
void writeHeatMtl(const std::string& image, ByteSink& file) {
  const std::string material =
      "newmtl Heat \n"
      "Kd 1 1 1             \n"
      "Ns 96.0784\t\t\t \n"
      "d 1\t\t\t\t\t \n"
      "illum 1\t\t\t\t \n"
      "Ka 0 0 0\t\t\t \n"
      "Ks 1 1 1\t\t\t \n";
  file.write(material + "map_Kd " + image + "\n");
}

}  // namespace qelm::tool
