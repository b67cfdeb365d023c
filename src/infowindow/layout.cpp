#include "infowindow/layout.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace qelm::infowindow {
namespace {

constexpr std::wstring_view kProductWord = L"Vantle";
constexpr std::wstring_view kMarkerName = L"TermsAgreed.txt";

/// Where a stretch of `size` begins that is centred between two coordinates. Their sum
/// may leave the range of int, and so may the result, which stops at its end.
int centred(int from, int to, int size) {
  const std::int64_t begin = (static_cast<std::int64_t>(from) + to) / 2 - size / 2;
  return static_cast<int>(std::max<std::int64_t>(begin, std::numeric_limits<int>::min()));
}

}  // namespace

Point positionOver(const Edges& owner) {
  if (owner.top == 0) return kDefaultPosition;
  return {centred(owner.left, owner.right, kWindowWidth),
          centred(owner.top, owner.bottom, kWindowHeight)};
}

ChildLayout layOutChildren(int w, int h) {
  return {{w - 80, 35, 29, 29},
          {w / 2 - 200, h / 2 + 110, 400, 25},
          {w / 2 - 150, h - 100, 300, 18},
          {w / 2 - 150, h - 40, 300, 18}};
}

int mulDiv(int a, int b, int c) {
  if (c == 0) return -1;
  const std::int64_t product = static_cast<std::int64_t>(a) * b;
  const std::int64_t magnitude = product < 0 ? -product : product;
  const std::int64_t divisor = c < 0 ? -static_cast<std::int64_t>(c) : c;
  const std::int64_t rounded = (magnitude + divisor / 2) / divisor;
  const std::int64_t result = (product < 0) == (c < 0) ? rounded : -rounded;
  if (result < std::numeric_limits<int>::min() || result > std::numeric_limits<int>::max()) {
    return -1;
  }
  return static_cast<int>(result);
}

PaintLayout layOutText(int cw, int ch, int dotsPerInch, int logoWidth) {
  const int s = mulDiv(26, dotsPerInch, 72);  // 26 points in pixels
  const int y0 = (ch - s) / 2;
  return {
      {cw / 2 - logoWidth / 2, 40}, cw / 2, y0 - 30, y0 + 70, y0 + 95, y0 + 110, -2 * s, -(s / 3)};
}

bool countsAsSet(unsigned long returnedLength) {
  return returnedLength >= 1 && returnedLength <= 255;
}

FixedText<kFolderRoom + 3 * kAppendBound> markerPath(std::wstring_view folder) {
  FixedText<kFolderRoom + 3 * kAppendBound> path;
  path.append(folder.substr(0, kFolderRoom - 1));
  for (const std::wstring_view part : {std::wstring_view(L"\\"), kProductWord, kMarkerName}) {
    path.append(part.substr(0, kAppendBound));
  }
  return path;
}

FixedText<10000> openCommand(std::wstring_view target) {
  FixedText<10000> command;
  for (const std::wstring_view part :
       {std::wstring_view(L"start \"\" \""), target, std::wstring_view(L"\"")}) {
    command.append(part);
  }
  return command;
}

}  // namespace qelm::infowindow
