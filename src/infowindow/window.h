// What the parts of the information window share. Win32 only.
#ifndef QELM_INFOWINDOW_WINDOW_H
#define QELM_INFOWINDOW_WINDOW_H

#include <windows.h>

#include <atomic>

namespace qelm::infowindow {

// Process-wide, one of each. The window's thread writes them; the handle is read by
// the exports on any thread, without a lock.
extern std::atomic<HWND> poshWindowHandle;
extern HBITMAP poshLogo;  // the caller's, never deleted
extern RECT poshBorder;   // thicknesses of the frame

// Names of a link row's two properties. Their values are constant strings.
inline constexpr wchar_t kTextProperty[] = L"Linktext";
inline constexpr wchar_t kTargetProperty[] = L"Linktarget";

LRESULT CALLBACK poshWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK poshLinkProc(HWND row, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK poshCloseProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam);

/// Computes the frame and makes the four children, all sized from the window's
/// rectangle; nothing if that cannot be had.
void buildWindow(HWND window);
/// Draws logo, title, description, version and "powered by".
void paintWindow(HWND window);
/// Creates the empty file whose presence records that the terms were accepted. An
/// existing file is left alone, and a failure is ignored.
void writeMarker();

/// White on nothing, centred on a point at the top of the text.
void setTextStyle(HDC dc, COLORREF colour);
/// A font of this height, everything else at its default, smoothed.
HFONT makeFont(int height, const wchar_t* face);

// Of a child control that reacts to the pointer; `hovered` is its flag.
void showCursor(bool hovered);
void startHover(HWND control, bool& hovered);
void endHover(HWND control, bool& hovered);

}  // namespace qelm::infowindow

#endif  // QELM_INFOWINDOW_WINDOW_H
