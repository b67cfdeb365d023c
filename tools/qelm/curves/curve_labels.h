// Where the values of level curves are written on a picture.
//
// One level after another, its visible curves from the longest to the shortest, nine places along a
// curve from the middle outwards: the first place is taken at which the curve is straight enough
// under the label, and the label is clear of the page's edge and of all labels so far. A label is
// taken for a disc as wide as its text, whichever way it is turned. Greedy, and in n m steps for n
// labels and m places.
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

/// The levels in as few digits as tell each from its neighbours, and a single level from values
/// that are `span` away; three digits at least.
std::vector<std::string> levelTexts(const std::vector<double>& levels, double span);

/// At most one label for each level of each field. `texts` are the labels of each field's levels.
std::vector<CurveLabel> placeLabels(const CurvePicture& picture,
                                    const std::vector<std::vector<std::string>>& texts);

}  // namespace qelm::tool

#endif
