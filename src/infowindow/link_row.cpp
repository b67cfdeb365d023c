// A line of text that opens an address.
#include <windows.h>

#include <cwchar>

#include "infowindow/layout.h"
#include "infowindow/window.h"
#include "interface/index.h"

namespace qelm::infowindow {
namespace {

// One flag for all rows, on purpose; each row redraws only itself.
std::atomic<bool> linkHovered = false;

constexpr COLORREF kHoverColour = RGB(39, 184, 238);
constexpr COLORREF kTextColour = RGB(255, 255, 255);

const wchar_t* property(HWND row, const wchar_t* name) {
  return static_cast<const wchar_t*>(GetPropW(row, name));
}

HFONT rowFont(int height) {
  LOGFONTW font = {};
  font.lfHeight = height;
  font.lfWeight = linkHovered ? 750 : 650;
  std::wcscpy(font.lfFaceName, L"Helvetica");
  return CreateFontIndirectW(&font);
}

void paintRow(HWND row) {
  PAINTSTRUCT paint;
  const HDC dc = BeginPaint(row, &paint);
  RECT client;
  GetClientRect(row, &client);
  const HBRUSH black = CreateSolidBrush(RGB(0, 0, 0));
  FillRect(dc, &client, black);
  DeleteObject(black);
  const HFONT font = rowFont(client.bottom);
  const HGDIOBJ before = SelectObject(dc, font);
  setTextStyle(dc, linkHovered ? kHoverColour : kTextColour);
  const wchar_t* text = property(row, kTextProperty);
  TextOutW(dc, client.right / 2, 0, text, asInt(std::wcslen(text)));
  SelectObject(dc, before);
  EndPaint(row, &paint);
  DeleteObject(font);
}

/// The command interpreter's start command; the window stays open.
void openTarget(HWND row) { _wsystem(openCommand(property(row, kTargetProperty)).c_str()); }

}  // namespace

LRESULT CALLBACK poshLinkProc(HWND row, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT:
      paintRow(row);
      break;
    case WM_SETCURSOR:
      showCursor(linkHovered);
      return TRUE;
    case WM_MOUSEMOVE:
      startHover(row, linkHovered);
      break;
    case WM_MOUSELEAVE:
      endHover(row, linkHovered);
      return 0;
    case WM_LBUTTONUP:
      openTarget(row);
      break;
    default:
      break;
  }
  return DefWindowProcA(row, message, wParam, lParam);
}

}  // namespace qelm::infowindow
