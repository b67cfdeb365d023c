// The box that ends the window.
#include <windows.h>

#include "infowindow/window.h"

namespace qelm::infowindow {
namespace {

bool closeHovered = false;

constexpr wchar_t kCross[] = L"\x2715";  // multiplication X
constexpr int kCrossHeight = 29;

void paintBox(HWND box) {
  RECT client;
  GetClientRect(box, &client);
  InvalidateRect(box, &client, TRUE);
  PAINTSTRUCT paint;
  const HDC dc = BeginPaint(box, &paint);
  // Made on every paint and not deleted: known, small, and left as it is.
  FillRect(dc, &client, CreateSolidBrush(closeHovered ? RGB(90, 90, 90) : RGB(30, 30, 30)));
  const HFONT font = makeFont(kCrossHeight, L"Helvetica");
  const HGDIOBJ before = SelectObject(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(255, 255, 255));
  TextOutW(dc, 6, -1, kCross, 1);
  SelectObject(dc, before);
  EndPaint(box, &paint);
  DeleteObject(font);
}

}  // namespace

LRESULT CALLBACK poshCloseProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam) {
  // On every message, whichever it is. Intended: the handle is gone as soon as the
  // box has been shown, and with it what keeps a second window from being opened.
  poshWindowHandle = nullptr;
  switch (message) {
    case WM_PAINT:
      paintBox(box);
      break;
    case WM_SETCURSOR:
      showCursor(closeHovered);
      return TRUE;
    case WM_MOUSEMOVE:
      startHover(box, closeHovered);
      break;
    case WM_MOUSELEAVE:
      endHover(box, closeHovered);
      return 0;
    case WM_LBUTTONUP:
      PostQuitMessage(0);
      break;
    default:
      break;
  }
  return DefWindowProcA(box, message, wParam, lParam);
}

}  // namespace qelm::infowindow
