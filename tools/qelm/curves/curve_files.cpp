#include "curves/curve_files.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "text/text.h"
#include "text/text_block.h"

namespace qelm::tool {
namespace {

std::string dumped(const nlohmann::json& value) {
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// A name ends at a blank in OBJ files.
std::string objName(std::string name) {
  name = oneLine(std::move(name));
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
}

/// Returns the number of the vertex after the last.
std::size_t writeFieldObj(const CurveSet& curves, std::size_t first, TextBlock& block) {
  std::optional<std::size_t> group;
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
  return first;
}

void writeCurveJson(const CurveSet& curves, const Curve& curve, const std::string& field,
                    TextBlock& block) {
  block.text("\n  {{{}\"level\": {}, \"value\": {}, \"closed\": {}, \"points\": [", field,
             curve.level, curves.levels()[curve.level], curve.closed);
  for (std::size_t k = 0; k < curve.size(); ++k) {
    const Point p = curve.point(k);
    block.text("{}[{}, {}, {}]", k == 0 ? "" : ", ", p[0], p[1], p[2]);
  }
  block.text("]}}");
}

}  // namespace

void writeCurvesObj(std::span<const FieldCurves> fields, OutputFile& file) {
  TextBlock block(file);
  block.text("# level curves written by qelm\n");
  std::size_t first = 1;  // OBJ files number their vertices from 1
  for (const FieldCurves& field : fields) {
    if (fields.size() > 1) block.text("o {}\n", objName(field.name));
    first = writeFieldObj(field.curves, first, block);
  }
  block.flush();
}

void writeCurvesJson(std::span<const FieldCurves> fields, const std::string& meshName,
                     OutputFile& file) {
  const bool areSeveral = fields.size() > 1;
  TextBlock block(file);
  block.text("{{\"mesh\": {},\n ", dumped(meshName));
  if (areSeveral) {
    nlohmann::json list = nlohmann::json::array();
    for (const FieldCurves& field : fields)
      list.push_back({{"name", field.name}, {"levels", field.curves.levels()}});
    block.text("\"fields\": {}", dumped(list));
  } else {
    block.text("\"levels\": {}", dumped(fields[0].curves.levels()));
  }
  block.text(",\n \"curves\": [");
  const char* comma = "";
  for (std::size_t f = 0; f < fields.size(); ++f)
    for (std::size_t c = 0; c < fields[f].curves.size(); ++c) {
      block.text("{}", comma);
      comma = ",";
      writeCurveJson(fields[f].curves, fields[f].curves[c],
                     areSeveral ? fmt::format("\"field\": {}, ", f) : "", block);
    }
  block.text("\n ]}}\n");
  block.flush();
}

void writeCurvesCsv(std::span<const FieldCurves> fields, OutputFile& file) {
  const bool areSeveral = fields.size() > 1;
  TextBlock block(file);
  block.text("{}curve,level,value,closed,x,y,z\n", areSeveral ? "field," : "");
  for (std::size_t f = 0; f < fields.size(); ++f) {
    const CurveSet& curves = fields[f].curves;
    const std::string field = areSeveral ? fmt::format("{},", f) : "";
    for (std::size_t c = 0; c < curves.size(); ++c) {
      const Curve curve = curves[c];
      for (std::size_t k = 0; k < curve.size(); ++k) {
        const Point p = curve.point(k);
        block.text("{}{},{},{},{},{},{},{}\n", field, c, curve.level, curves.levels()[curve.level],
                   curve.closed ? 1 : 0, p[0], p[1], p[2]);
      }
    }
  }
  block.flush();
}

}  // namespace qelm::tool
