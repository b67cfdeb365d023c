#include "curves/curve_files.h"

#include <nlohmann/json.hpp>
#include <optional>

#include "text/text_block.h"

namespace qelm::tool {

void writeCurvesObj(const CurveSet& curves, OutputFile& file) {
  TextBlock block(file);
  block.text("# level curves written by qelm\n");
  std::optional<std::size_t> group;
  std::size_t first = 1;  // OBJ files number their vertices from 1
  for (std::size_t c = 0; c < curves.size(); ++c) {
    const Curve curve = curves[c];
    if (group != curve.level) block.text("g level_{}\n", curves.levels()[curve.level]);
    group = curve.level;
    for (std::size_t k = 0; k < curve.size(); ++k) {
      const Point p = curve.point(k);
      block.text("v {} {} {}\n", p[0], p[1], p[2]);
    }
    block.text("l");
    for (std::size_t k = 0; k < curve.size(); ++k) block.text(" {}", first + k);
    if (curve.closed) block.text(" {}", first);
    block.text("\n");
    first += curve.size();
  }
  block.flush();
}

void writeCurvesJson(const CurveSet& curves, const std::string& meshName, OutputFile& file) {
  using nlohmann::json;
  const auto dumped = [](const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
  };
  TextBlock block(file);
  block.text("{{\"mesh\": {},\n \"levels\": {},\n \"curves\": [", dumped(meshName),
             dumped(curves.levels()));
  for (std::size_t c = 0; c < curves.size(); ++c) {
    const Curve curve = curves[c];
    block.text("{}\n  {{\"level\": {}, \"value\": {}, \"closed\": {}, \"points\": [",
               c == 0 ? "" : ",", curve.level, curves.levels()[curve.level], curve.closed);
    for (std::size_t k = 0; k < curve.size(); ++k) {
      const Point p = curve.point(k);
      block.text("{}[{}, {}, {}]", k == 0 ? "" : ", ", p[0], p[1], p[2]);
    }
    block.text("]}}");
  }
  block.text("\n ]}}\n");
  block.flush();
}

void writeCurvesCsv(const CurveSet& curves, OutputFile& file) {
  TextBlock block(file);
  block.text("curve,level,value,closed,x,y,z\n");
  for (std::size_t c = 0; c < curves.size(); ++c) {
    const Curve curve = curves[c];
    for (std::size_t k = 0; k < curve.size(); ++k) {
      const Point p = curve.point(k);
      block.text("{},{},{},{},{},{},{}\n", c, curve.level, curves.levels()[curve.level],
                 curve.closed ? 1 : 0, p[0], p[1], p[2]);
    }
  }
  block.flush();
}

}  // namespace qelm::tool
