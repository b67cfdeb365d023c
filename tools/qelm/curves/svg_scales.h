// The scales of a drawing: of colours, and of lengths.
#ifndef QELM_TOOLS_SVG_SCALES_H
#define QELM_TOOLS_SVG_SCALES_H

#include <string>
#include <vector>

#include "colours/caption.h"
#include "curves/field_curves.h"
#include "curves/sheet.h"
#include "text/text_block.h"

namespace qelm::tool {

/// "#fde725".
std::string hex(const Colour& colour);
/// As text of an XML element.
std::string xmlText(const std::string& text);

/// A rectangle of the page, in pixels.
struct SvgArea {
  double left, top, height;
};

/// The bar of a field's colours with its ends, its levels and, of several fields, its name; the
/// number makes the names of its elements different from those of others.
void writeColourScale(const FieldCurves& field, const std::vector<std::string>& texts,
                      const Caption& caption, std::size_t number, const std::string& dashes,
                      const SvgArea& area, TextBlock& block);

/// A bar of a round length, with that length; from its left end on the line `top`.
void writeLengthBar(const Sheet& sheet, double pixelsToMillimetre, double left, double top,
                    TextBlock& block);

}  // namespace qelm::tool

#endif
