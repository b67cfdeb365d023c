// Shows the information window with a small logo, as a host's plug-in would.
//
// usage: infowindow_demo
#include <windows.h>

#include <cstdint>
#include <vector>

#include "qelm.h"

namespace {

constexpr int kLogoWidth = 220;
constexpr int kLogoHeight = 130;
constexpr int kBands = 9;

/// Nested level curves round two hills, in the colours of a heat map.
COLORREF logoColour(int x, int y) {
  const auto hill = [&](double cx, double cy, double size) {
    const double dx = (x - cx) / size;
    const double dy = (y - cy) / size;
    return 1 / (1 + dx * dx + dy * dy);
  };
  const double height = hill(75, 70, 38) + 0.8 * hill(155, 55, 30);
  const double band = height * kBands;
  const double within = band - static_cast<int>(band);
  if (height < 0.36) return RGB(0, 0, 0);
  if (within > 0.16) return RGB(0, 0, 0);
  const double t = height > 1 ? 1 : height;
  return RGB(static_cast<int>(60 + 190 * t * t), static_cast<int>(60 + 170 * t),
             static_cast<int>(130 - 90 * t));
}

HBITMAP makeLogo() {
  std::vector<std::uint32_t> pixels;
  for (int y = 0; y < kLogoHeight; ++y) {
    for (int x = 0; x < kLogoWidth; ++x) {
      const COLORREF c = logoColour(x, y);
      pixels.push_back(
          static_cast<std::uint32_t>(GetRValue(c) << 16 | GetGValue(c) << 8 | GetBValue(c)));
    }
  }
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = kLogoWidth;
  info.bmiHeader.biHeight = -kLogoHeight;  // rows from the top
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  const HDC screen = GetDC(nullptr);
  const HBITMAP bitmap =
      CreateDIBitmap(screen, &info.bmiHeader, CBM_INIT, pixels.data(), &info, DIB_RGB_COLORS);
  ReleaseDC(nullptr, screen);
  return bitmap;
}

/// The library registers its window's class under one letter and creates the window
/// from the full name, which a host registers. The procedure is the library's own:
/// a first call leaves it in the short class.
bool registerFullClass(HBITMAP logo) {
  const HINSTANCE module = GetModuleHandleW(nullptr);
  if (doPoshModal(logo, nullptr) != 1) return false;
  WNDCLASSA own = {};
  for (int i = 0; i < 500 && GetClassInfoA(module, "Q", &own) == 0; ++i) Sleep(10);
  Sleep(200);
  WNDCLASSW full = {};
  full.style = own.style;
  full.lpfnWndProc = own.lpfnWndProc;
  full.hInstance = module;
  full.hCursor = own.hCursor;
  full.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
  full.lpszClassName = L"QuobinsCoolClass";
  return own.lpfnWndProc != nullptr && RegisterClassW(&full) != 0;
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  const HBITMAP logo = makeLogo();
  if (!registerFullClass(logo)) return 1;
  if (doPoshModal(logo, nullptr) != 1) return 1;
  Sleep(1000);
  while (FindWindowW(L"QuobinsCoolClass", nullptr) != nullptr) Sleep(100);
  return 0;
}
