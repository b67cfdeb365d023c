#include "infowindow/layout.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace qelm::infowindow {
namespace {

constexpr std::size_t kCommandRoom = 10000;  // with the end
constexpr std::size_t kAppendBound = 1000;

constexpr std::wstring_view kProductWord = L"Vantle";
constexpr std::wstring_view kMarkerName = L"TermsAgreed.txt";

}  // namespace

Point positionOver(const Edges& owner) {
  if (owner.top == 0) return kDefaultPosition;
  return {(owner.left + owner.right) / 2 - kWindowWidth / 2,
          (owner.top + owner.bottom) / 2 - kWindowHeight / 2};
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

std::wstring markerPath(std::wstring_view folder) {
  std::wstring path(folder.substr(0, kFolderRoom - 1));
  for (const std::wstring_view part : {std::wstring_view(L"\\"), kProductWord, kMarkerName}) {
    path += part.substr(0, kAppendBound);
  }
  return path;
}

std::wstring openCommand(std::wstring_view target) {
  std::wstring command = L"start \"\" \"";
  command += target.substr(0, kCommandRoom);
  command += L'"';
  command.resize(std::min(command.size(), kCommandRoom - 1));
  return command;
}

}  // namespace qelm::infowindow
