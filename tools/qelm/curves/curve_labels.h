// Where the values of level curves are written on a picture.
#ifndef QELM_TOOLS_CURVE_LABELS_H
#define QELM_TOOLS_CURVE_LABELS_H

#include <string>
#include <vector>

#include "curves/curve_picture.h"

namespace qelm::tool {

struct CurveLabel {
  std::string text;
  PicturePoint centre;
  double degrees;  ///< clockwise, never upside down
};

inline constexpr double kLabelSize = 11;  ///< the font's size, in pixels

/// The levels with as few digits as tell them apart well, and a single one from places that are
/// `span` away; at least three.
std::vector<std::string> levelTexts(const std::vector<double>& levels, double span);

/// At most one label for each level of each field, on its longest visible curve that is long and
/// straight enough there; labels keep clear of each other.
std::vector<CurveLabel> placeLabels(const CurvePicture& picture,
                                    const std::vector<std::vector<std::string>>& texts);

}  // namespace qelm::tool

#endif
