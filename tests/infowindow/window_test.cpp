// The calls that open the information window: what they return, and what they leave behind. Each
// scenario runs in a process of its own, with a desktop; see test_window.py.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "infowindow/desktop.h"
#include "infowindow/shown_window.h"
#include "qelm.h"

namespace qelm::test {
namespace {

TEST(Suppressed, ReturnsThreeAndStartsNoThread) {
  SetEnvironmentVariableA("BLOCK_FILEIO", "1");
  registerFullClass(Procedure::defaultOne);
  EXPECT_EQ(doPoshModal(makeLogo(), nullptr), 3);
  EXPECT_EQ(getPoshHandle(), nullptr);
  letTimePass(500);
  EXPECT_FALSE(shortClassIsRegistered());
  EXPECT_EQ(findWindow(), nullptr);
}

TEST(Suppressed, ByValuesOf1To255CharactersOnly) {
  for (const auto& [length, result] : {std::pair{255, 3}, {256, 1}, {300, 1}, {0, 1}, {1, 3}}) {
    SetEnvironmentVariableA("BLOCK_FILEIO",
                            std::string(static_cast<std::size_t>(length), 'x').c_str());
    EXPECT_EQ(doPoshModal(nullptr, nullptr), result) << length;
  }
  SetEnvironmentVariableA("BLOCK_FILEIO", nullptr);
  EXPECT_EQ(doPoshModal(nullptr, nullptr), 1);
}

TEST(Suppressed, EmptiesTheHandle) {
  registerFullClass(Procedure::defaultOne);
  ASSERT_NE(openWindow(), nullptr);
  ASSERT_NE(getPoshHandle(), nullptr);
  SetEnvironmentVariableA("BLOCK_FILEIO", "1");
  EXPECT_EQ(doPoshModal(makeLogo(), nullptr), 3) << "before the window that is open is looked at";
  EXPECT_EQ(getPoshHandle(), nullptr);
}

TEST(NullLogo, ReturnsOneAndMakesNoWindow) {
  registerFullClass(Procedure::defaultOne);
  EXPECT_EQ(doPoshModal(nullptr, nullptr), 1);
  letTimePass(500);
  EXPECT_FALSE(shortClassIsRegistered());
  EXPECT_EQ(findWindow(), nullptr);
}

TEST(ClassName, WithoutTheFullOneRegisteredElsewhereNoWindowAppearsOnPurpose) {
  EXPECT_EQ(doPoshModal(makeLogo(), nullptr), 1);
  ASSERT_TRUE(waitFor(shortClassIsRegistered)) << "the ANSI call sees the first letter alone";
  letTimePass(300);
  EXPECT_EQ(findWindow(), nullptr);
  EXPECT_EQ(getPoshHandle(), nullptr);
  EXPECT_TRUE(shortClassIsRegistered()) << "the registration outlives the failed creation";
  EXPECT_EQ(doPoshModal(makeLogo(), nullptr), 1) << "and a later call finds it";
}

TEST(SecondCall, ReturnsTwoWhileTheHandleIsHeld) {
  // The default procedure makes no children, so no close box empties the handle.
  registerFullClass(Procedure::defaultOne);
  const HWND window = openWindow();
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(getPoshHandle(), window);
  EXPECT_EQ(doPoshModal(makeLogo(), nullptr), 2);
}

TEST(Position, WithoutOwnerIs300And300) {
  registerFullClass(Procedure::defaultOne);
  const HWND window = openWindow();
  ASSERT_NE(window, nullptr);
  RECT r;
  GetWindowRect(window, &r);
  expectRectangle(r, 300, 300, 800, 494);
  const auto style = static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE));
  EXPECT_EQ(style & (WS_POPUP | WS_VISIBLE | WS_CAPTION | WS_THICKFRAME | WS_CHILD),
            static_cast<DWORD>(WS_POPUP | WS_VISIBLE));
  EXPECT_EQ(GetWindowTextLengthW(window), 0);
  EXPECT_EQ(GetWindow(window, GW_OWNER), nullptr);
}

TEST(Position, IsCentredOnTheOwnerWhichStaysEnabled) {
  registerFullClass(Procedure::defaultOne);
  const HWND owner = makeOwner(100, 200, 900, 800);
  const HWND window = openWindow(owner);
  ASSERT_NE(window, nullptr);
  RECT r;
  GetWindowRect(window, &r);
  expectRectangle(r, 100, 253, 800, 494);
  EXPECT_EQ(GetWindow(window, GW_OWNER), owner);
  EXPECT_TRUE(IsWindowEnabled(owner));
}

TEST(Position, OverAnOwnerAtRow0IsTheDefaultOnPurpose) {
  registerFullClass(Procedure::defaultOne);
  const HWND window = openWindow(makeOwner(100, 0, 900, 700));
  ASSERT_NE(window, nullptr);
  RECT r;
  GetWindowRect(window, &r);
  expectRectangle(r, 300, 300, 800, 494);
}

TEST(Closing, EmptiesTheHandleAndEndsTheThread) {
  registerFullClass(Procedure::defaultOne);
  const HWND window = openWindow();
  ASSERT_NE(window, nullptr);
  ASSERT_TRUE(shortClassIsRegistered());
  SendMessageW(window, WM_CLOSE, 0, 0);
  EXPECT_EQ(getPoshHandle(), nullptr);
  EXPECT_FALSE(IsWindow(window));
  EXPECT_TRUE(waitFor([] { return !shortClassIsRegistered(); })) << "unregistered at the end";
}

/// How many handles of a kind are in use, read off the numbers that new ones get:
/// enough of them use up every gap that earlier ones have left.
template <class Make, class Free>
int highestHandle(Make make, Free free) {
  std::vector<HANDLE> made;
  int highest = 0;
  for (int i = 0; i < 1500; ++i) {
    made.push_back(make());
    highest = std::max(highest, static_cast<int>(reinterpret_cast<UINT_PTR>(made.back()) & 0xFFFF));
  }
  for (const HANDLE h : made) free(h);
  return highest;
}

int highestGdiHandle() {
  return highestHandle([] { return static_cast<HANDLE>(CreateSolidBrush(RGB(1, 2, 3))); },
                       [](HANDLE h) { DeleteObject(h); });
}

int highestUserHandle() {
  return highestHandle(
      [] {
        return static_cast<HANDLE>(CreateWindowExW(0, L"static", nullptr, 0, 0, 0, 1, 1,
                                                   HWND_MESSAGE, nullptr, nullptr, nullptr));
      },
      [](HANDLE h) { DestroyWindow(static_cast<HWND>(h)); });
}

TEST(FiftyCycles, LeakNothingButTheCloseBoxsBrushes) {
  registerFullClass(Procedure::ownOne);
  const HBITMAP logo = makeLogo();
  const auto cycle = [&] {
    ASSERT_EQ(doPoshModal(logo, nullptr), 1);
    ASSERT_TRUE(waitFor([] { return findWindow() != nullptr && IsWindowVisible(findWindow()); }));
    letTimePass(60);
    PostMessageW(childrenOf(findWindow())[0], WM_LBUTTONUP, 0, 0);
    ASSERT_TRUE(waitFor([] { return findWindow() == nullptr; }));
    ASSERT_TRUE(waitFor([] { return !shortClassIsRegistered(); }));
  };
  cycle();
  const int gdiBefore = highestGdiHandle();
  const int userBefore = highestUserHandle();
  for (int i = 0; i < 50; ++i) cycle();
  // A close box paints once or twice while it is open; each paint leaves a brush.
  EXPECT_LE(highestGdiHandle() - gdiBefore, 50 * 3);
  EXPECT_LE(highestUserHandle() - userBefore, 8) << "all windows are gone";
}

}  // namespace
}  // namespace qelm::test
