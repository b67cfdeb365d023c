// Helpers of the information window's scenarios: waiting, looking, pointing.
#ifndef QELM_TESTS_INFOWINDOW_DESKTOP_H
#define QELM_TESTS_INFOWINDOW_DESKTOP_H

#include <windows.h>

#include <vector>

namespace qelm::test {

/// The colour of every logo, and its size.
inline constexpr COLORREF kLogoColour = RGB(200, 30, 60);
inline constexpr int kLogoWidth = 120;
inline constexpr int kLogoHeight = 60;

HBITMAP makeLogo();

/// Handles this thread's messages until condition() holds; false after a few seconds.
template <class Condition>
bool waitFor(Condition condition) {
  for (int i = 0; i < 500; ++i) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    if (condition()) return true;
    Sleep(10);
  }
  return false;
}

/// Handles messages for a while.
void letTimePass(int milliseconds);

/// Whether the class of the one-letter ANSI name is registered.
bool shortClassIsRegistered();

/// Registers the class of the full wide name. With the window's own procedure, which
/// is taken from the short class after one call that opened nothing; or with the
/// default one, so that nothing happens while the window is created.
enum class Procedure { ownOne, defaultOne };
void registerFullClass(Procedure procedure);

/// Opens the window and waits until it stands there; null if it does not.
HWND openWindow(HWND owner = nullptr);
HWND findWindow();
HWND makeOwner(int left, int top, int right, int bottom);

/// Children in creation order: close box, credit, documentation, examples.
std::vector<HWND> childrenOf(HWND window);

/// Position in the parent's client area.
RECT rectangleInParent(HWND child);

COLORREF pixel(HWND window, int x, int y);
/// Pixels of a client rectangle that have exactly this colour.
int countPixels(HWND window, RECT area, COLORREF colour);
/// Moves the pointer to a position in the window's client area.
void pointAt(HWND window, int x, int y);

}  // namespace qelm::test

#endif  // QELM_TESTS_INFOWINDOW_DESKTOP_H
