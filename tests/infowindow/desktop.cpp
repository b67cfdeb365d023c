#include "infowindow/desktop.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "qelm.h"

namespace qelm::test {
namespace {

constexpr wchar_t kFullName[] = L"QuobinsCoolClass";

/// Ends the thread of a window as the close box does, by a quit message, and waits for it.
void endThreadOf(HWND window) {
  const DWORD id = GetWindowThreadProcessId(window, nullptr);
  const HANDLE thread = OpenThread(SYNCHRONIZE, FALSE, id);
  ASSERT_NE(thread, nullptr);
  PostThreadMessageW(id, WM_QUIT, 0, 0);
  EXPECT_TRUE(waitFor([thread] { return WaitForSingleObject(thread, 0) == WAIT_OBJECT_0; }))
      << "the window's thread goes on";
  CloseHandle(thread);
}

/// A scenario may leave windows open. Their threads must not go on painting while the program's
/// statics are destroyed, for what watches the window's calls writes into them.
class NoThreadOutlivesTheTests : public testing::Environment {
  void TearDown() override {
    HWND window = nullptr;
    while (!testing::Test::HasFailure() && (window = findWindow()) != nullptr) endThreadOf(window);
  }
};
const testing::Environment* const atEnd =
    testing::AddGlobalTestEnvironment(new NoThreadOutlivesTheTests);

}  // namespace

HBITMAP makeLogo() {
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateCompatibleBitmap(screen, kLogoWidth, kLogoHeight);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  const RECT all = {0, 0, kLogoWidth, kLogoHeight};
  const HBRUSH brush = CreateSolidBrush(kLogoColour);
  FillRect(memory, &all, brush);
  DeleteObject(brush);
  SelectObject(memory, before);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return bitmap;
}

void letTimePass(int milliseconds) {
  const DWORD start = GetTickCount();
  waitFor([&] { return GetTickCount() - start >= static_cast<DWORD>(milliseconds); });
}

bool shortClassIsRegistered() {
  WNDCLASSA found;
  return GetClassInfoA(GetModuleHandleA(nullptr), "Q", &found) != 0;
}

void registerFullClass(Procedure procedure) {
  WNDCLASSW record = {};
  record.lpfnWndProc = DefWindowProcW;
  if (procedure == Procedure::ownOne) {
    EXPECT_EQ(doPoshModal(makeLogo(), nullptr), 1);
    ASSERT_TRUE(waitFor(shortClassIsRegistered));
    letTimePass(200);  // its thread ends, the class stays
    WNDCLASSA own = {};
    ASSERT_TRUE(GetClassInfoA(GetModuleHandleA(nullptr), "Q", &own));
    record.lpfnWndProc = own.lpfnWndProc;
  }
  record.style = CS_HREDRAW | CS_VREDRAW;
  record.hInstance = GetModuleHandleW(nullptr);
  record.hCursor = LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_ARROW));
  record.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
  record.lpszClassName = kFullName;
  ASSERT_NE(RegisterClassW(&record), 0);
}

HWND findWindow() { return FindWindowW(kFullName, nullptr); }

HWND openWindow(HWND owner) {
  if (doPoshModal(makeLogo(), owner) != 1) return nullptr;
  if (!waitFor([] { return findWindow() != nullptr && IsWindowVisible(findWindow()); })) {
    return nullptr;
  }
  letTimePass(500);  // until it has painted
  return findWindow();
}

HWND makeOwner(int left, int top, int right, int bottom) {
  return CreateWindowExW(0, L"static", L"owner", WS_POPUP | WS_VISIBLE, left, top, right - left,
                         bottom - top, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
}

std::vector<HWND> childrenOf(HWND window) {
  std::vector<HWND> children;
  // From the top of the stack down, which is from the first made to the last.
  for (HWND child = GetWindow(window, GW_CHILD); child != nullptr;
       child = GetWindow(child, GW_HWNDNEXT)) {
    children.push_back(child);
  }
  return children;
}

RECT rectangleInParent(HWND child) {
  RECT r = {};
  GetWindowRect(child, &r);
  MapWindowPoints(nullptr, GetParent(child), reinterpret_cast<POINT*>(&r), 2);
  return r;
}

COLORREF pixel(HWND window, int x, int y) {
  const HDC dc = GetDC(window);
  const COLORREF colour = GetPixel(dc, x, y);
  ReleaseDC(window, dc);
  return colour;
}

int countPixels(HWND window, RECT area, COLORREF colour) {
  const HDC dc = GetDC(window);
  int count = 0;
  for (int y = area.top; y < area.bottom; ++y) {
    for (int x = area.left; x < area.right; ++x) count += GetPixel(dc, x, y) == colour ? 1 : 0;
  }
  ReleaseDC(window, dc);
  return count;
}

void pointAt(HWND window, int x, int y) {
  POINT p = {x, y};
  ClientToScreen(window, &p);
  SetCursorPos(p.x, p.y);
}

}  // namespace qelm::test
