// Where everything in the information window goes, and the small rules around it.
// Plain arithmetic and strings, no Windows: tested on every platform.
#ifndef QELM_INFOWINDOW_LAYOUT_H
#define QELM_INFOWINDOW_LAYOUT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace qelm::infowindow {

inline constexpr int kWindowWidth = 800;
inline constexpr int kWindowHeight = 494;

struct Point {
  int x, y;
  bool operator==(const Point&) const = default;
};

struct Size {
  int width, height;
  bool operator==(const Size&) const = default;
};

struct Box {
  int x, y, width, height;
  bool operator==(const Box&) const = default;
};

/// Edges, as Windows gives them.
struct Edges {
  int left, top, right, bottom;
};

/// Top-left corner of a window without a usable owner.
inline constexpr Point kDefaultPosition = {300, 300};

/// Top-left corner of the window: centred on its owner, halves truncated. An owner
/// whose top edge lies exactly at row 0 gives the default position: the test that
/// tells an owner's rectangle from none looks at the top edge alone, and stays so.
Point positionOver(const Edges& owner);

/// The four children in a window of width w and height h.
struct ChildLayout {
  Box closeBox, creditRow, documentationRow, examplesRow;
};
ChildLayout layOutChildren(int w, int h);

/// a * b / c, rounded to nearest, halves away from zero; -1 if c is 0 or the result
/// does not fit. What the platform's function of the same name computes.
int mulDiv(int a, int b, int c);

/// Places in the client area, width cw and height ch, on a screen of so many dots an
/// inch. All texts are centred on textCentre; logoHeight does not matter.
struct PaintLayout {
  Point logo;
  int textCentre;
  int titleTop, descriptionTop, versionTop, poweredByTop;
  int titleFontHeight, textFontHeight;  ///< negative: heights of characters
};
PaintLayout layOutText(int cw, int ch, int dotsPerInch, int logoWidth);

/// Whether an environment variable counts as set, by the length that reading it into
/// a buffer of 256 characters returned: 1 to 255. 0 is absent or empty; 256 and more
/// is the room that a longer value would need.
bool countsAsSet(unsigned long returnedLength);

/// The largest value, without its end, that the application-data folder is read to.
inline constexpr std::size_t kFolderRoom = 1999;

/// Path of the marker file: the folder, a backslash, and the product word followed
/// at once by the file name, with no separator between these two on purpose. At most
/// 1000 characters of each are appended.
std::wstring markerPath(std::wstring_view folder);

/// The command that opens an address in the user's default handler. Nothing in the
/// target is escaped. Cut off at 9999 characters.
std::wstring openCommand(std::wstring_view target);

}  // namespace qelm::infowindow

#endif  // QELM_INFOWINDOW_LAYOUT_H
