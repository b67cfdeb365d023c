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

struct Colour {
  double red, green, blue;
};

/// Nested level curves round two hills, in the colours of a heat map.
Colour logoColour(double x, double y) {
  const auto hill = [&](double cx, double cy, double size) {
    const double dx = (x - cx) / size;
    const double dy = (y - cy) / size;
    return 1 / (1 + dx * dx + dy * dy);
  };
  const double height = hill(75, 70, 38) + 0.8 * hill(155, 55, 30);
  const double band = height * kBands;
  const double within = band - static_cast<int>(band);
  if (height < 0.36 || within > 0.18) return {0, 0, 0};
  const double t = height > 1 ? 1 : height;
  return {60 + 190 * t * t, 60 + 170 * t, 130 - 90 * t};
}

/// Mean over a pixel, so that the lines have smooth edges.
std::uint32_t logoPixel(int x, int y) {
  constexpr int kSteps = 4;
  Colour sum = {};
  for (int i = 0; i < kSteps * kSteps; ++i) {
    const Colour c = logoColour(x + (i % kSteps + 0.5) / kSteps, y + (i / kSteps + 0.5) / kSteps);
    sum = {sum.red + c.red, sum.green + c.green, sum.blue + c.blue};
  }
  const auto mean = [](double s) { return static_cast<std::uint32_t>(s / (kSteps * kSteps)); };
  return mean(sum.red) << 16 | mean(sum.green) << 8 | mean(sum.blue);
}

HBITMAP makeLogo() {
  std::vector<std::uint32_t> pixels;
  for (int y = 0; y < kLogoHeight; ++y) {
    for (int x = 0; x < kLogoWidth; ++x) pixels.push_back(logoPixel(x, y));
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

constexpr wchar_t kFullName[] = L"QuobinsCoolClass";

/// Procedure of the full class until the library puts its own in place, right after the
/// window was made: passes on to that one, so that it hears of the making, too. It is
/// found in the class that the library has registered under one letter by then.
LRESULT CALLBACK passOn(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  WNDCLASSA own;
  if (GetClassInfoA(GetModuleHandleW(nullptr), "Q", &own) == 0) {
    return DefWindowProcW(window, message, wParam, lParam);
  }
  return CallWindowProcW(own.lpfnWndProc, window, message, wParam, lParam);
}

/// The library creates its window from the full name, which the host registers.
bool registerFullClass() {
  WNDCLASSW full = {};
  full.style = CS_HREDRAW | CS_VREDRAW;
  full.lpfnWndProc = passOn;
  full.hInstance = GetModuleHandleW(nullptr);
  full.hCursor = LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_ARROW));
  full.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
  full.lpszClassName = kFullName;
  return RegisterClassW(&full) != 0;
}

/// The thread of the window, once it is there; null after 30 seconds without.
HANDLE windowThread() {
  for (int tries = 0; tries < 600; ++tries, Sleep(50)) {
    const HWND window = FindWindowW(kFullName, nullptr);
    if (window == nullptr) continue;
    return OpenThread(SYNCHRONIZE, FALSE, GetWindowThreadProcessId(window, nullptr));
  }
  return nullptr;
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  const HBITMAP logo = makeLogo();
  if (!registerFullClass() || doPoshModal(logo, nullptr) != 1) return 1;
  const HANDLE thread = windowThread();
  if (thread == nullptr) return 1;
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  DeleteObject(logo);
  return 0;
}
