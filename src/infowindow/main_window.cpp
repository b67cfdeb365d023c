// The window itself: its procedure, its frame and its children.
#include <dwmapi.h>
#include <windows.h>

#include "infowindow/deployment.h"
#include "infowindow/layout.h"
#include "infowindow/window.h"

namespace qelm::infowindow {
namespace {

struct LinkRow {
  const wchar_t* text;
  const wchar_t* target;
};

constexpr LinkRow kCredit = {QELM_CREDIT_TEXT, QELM_CREDIT_TARGET};
constexpr LinkRow kDocumentation = {L"Documentation and components reference",
                                    QELM_DOCUMENTATION_TARGET};
constexpr LinkRow kExamples = {L"Examples download archive", QELM_EXAMPLES_TARGET};

// The window's own style has neither a thick frame nor a border, so this stays empty
// unless the window's style is changed from outside.
void measureFrame(HWND window) {
  SetRectEmpty(&poshBorder);
  const auto style = static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE));
  if ((style & WS_THICKFRAME) != 0) {
    AdjustWindowRectEx(&poshBorder, style & ~static_cast<DWORD>(WS_CAPTION), FALSE, 0);
    poshBorder.left = -poshBorder.left;
    poshBorder.top = -poshBorder.top;
  } else if ((style & WS_BORDER) != 0) {
    SetRect(&poshBorder, 1, 1, 1, 1);
  }
  const MARGINS none = {0, 0, 0, 0};
  DwmExtendFrameIntoClientArea(window, &none);
}

/// An owner-drawn button whose procedure is replaced outright: it does not pass on to
/// the button's own, so it sends its parent no command notifications.
HWND makeChild(HWND parent, const wchar_t* caption, const Box& box, HINSTANCE instance,
               WNDPROC procedure) {
  const HWND child =
      CreateWindowExW(0, L"button", caption, WS_CHILD | WS_VISIBLE | BS_OWNERDRAW, box.x, box.y,
                      box.width, box.height, parent, nullptr, instance, nullptr);
  SendMessageA(child, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), TRUE);
  SetWindowLongPtrW(child, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure));
  return child;
}

/// The properties point at constant strings and are never removed.
void makeLinkRow(HWND parent, const LinkRow& link, const Box& box, HINSTANCE instance) {
  const HWND row = makeChild(parent, nullptr, box, instance, poshLinkProc);
  SetPropW(row, kTextProperty, const_cast<wchar_t*>(link.text));
  SetPropW(row, kTargetProperty, const_cast<wchar_t*>(link.target));
}

LRESULT shrinkByFrame(RECT& rectangle) {
  rectangle.left += poshBorder.left;
  rectangle.right -= poshBorder.right;
  rectangle.bottom -= poshBorder.bottom;
  return 0;
}

/// The whole window drags.
LRESULT hitTest(HWND window, WPARAM wParam, LPARAM lParam) {
  const LRESULT hit = DefWindowProcW(window, WM_NCHITTEST, wParam, lParam);
  return hit == HTCLIENT ? HTCAPTION : hit;
}

LRESULT colourStatic(HDC dc) {
  SetTextColor(dc, RGB(255, 255, 255));
  SetBkColor(dc, RGB(0, 0, 0));
  return reinterpret_cast<LRESULT>(CreateSolidBrush(RGB(0, 0, 0)));
}

}  // namespace

void buildWindow(HWND window) {
  RECT r;
  if (GetWindowRect(window, &r) == 0) return;
  measureFrame(window);
  const ChildLayout at = layOutChildren(r.right - r.left, r.bottom - r.top);
  const HINSTANCE module = GetModuleHandleA(nullptr);
  makeChild(window, L"OK", at.closeBox, nullptr, poshCloseProc);
  makeLinkRow(window, kCredit, at.creditRow, module);
  makeLinkRow(window, kDocumentation, at.documentationRow, module);
  makeLinkRow(window, kExamples, at.examplesRow, module);
}

LRESULT CALLBACK poshWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE:
      buildWindow(window);
      break;
    case WM_NCCALCSIZE:
      if (lParam != 0) return shrinkByFrame(*reinterpret_cast<RECT*>(lParam));
      break;
    case WM_NCHITTEST:
      return hitTest(window, wParam, lParam);
    case WM_PAINT:
      paintWindow(window);
      break;
    case WM_CLOSE:
      poshWindowHandle = nullptr;
      DestroyWindow(window);
      break;
    case WM_DESTROY:
      poshWindowHandle = nullptr;
      PostQuitMessage(0);
      return 0;
    case WM_COMMAND:
      writeMarker();
      break;
    case WM_CTLCOLORSTATIC:
      return colourStatic(reinterpret_cast<HDC>(wParam));
    default:
      break;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace qelm::infowindow
