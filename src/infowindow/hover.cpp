// The pointer over a child control.
#include <windows.h>

#include "infowindow/window.h"

namespace qelm::infowindow {
namespace {

void redraw(HWND control) {
  RECT client;
  GetClientRect(control, &client);
  InvalidateRect(control, &client, TRUE);
}

}  // namespace

void showCursor(bool hovered) { SetCursor(LoadCursorA(nullptr, hovered ? IDC_HAND : IDC_ARROW)); }

void startHover(HWND control, bool& hovered) {
  if (hovered) return;
  redraw(control);
  TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, control, HOVER_DEFAULT};
  hovered = TrackMouseEvent(&leave) != 0;
}

void endHover(HWND control, bool& hovered) {
  redraw(control);
  hovered = false;
}

}  // namespace qelm::infowindow
