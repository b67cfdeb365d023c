// Scenarios of the information window. Each runs in a process of its own, with a
// desktop; see test_window.py.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "infowindow/desktop.h"
#include "qelm.h"

namespace qelm::test {
namespace {

namespace fs = std::filesystem;

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kBlack = RGB(0, 0, 0);

std::wstring textProperty(HWND row, const wchar_t* name) {
  const auto* text = static_cast<const wchar_t*>(GetPropW(row, name));
  return text != nullptr ? text : L"(none)";
}

void expectRectangle(const RECT& r, int left, int top, int width, int height) {
  EXPECT_EQ(r.left, left);
  EXPECT_EQ(r.top, top);
  EXPECT_EQ(r.right - r.left, width);
  EXPECT_EQ(r.bottom - r.top, height);
}

class WindowShown : public testing::Test {
 protected:
  void SetUp() override {
    registerFullClass(Procedure::ownOne);
    SetCursorPos(5, 5);
    window_ = openWindow();
    ASSERT_NE(window_, nullptr);
    children_ = childrenOf(window_);
    ASSERT_EQ(children_.size(), 4U);
  }

  HWND closeBox() const { return children_[0]; }
  HWND creditRow() const { return children_[1]; }
  HWND documentationRow() const { return children_[2]; }

  HWND window_ = nullptr;
  std::vector<HWND> children_;
};

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

TEST_F(WindowShown, HasFourOwnerDrawnButtonsInTheirPlaces) {
  const int expected[4][4] = {
      {720, 35, 29, 29}, {200, 357, 400, 25}, {250, 394, 300, 18}, {250, 454, 300, 18}};
  for (std::size_t i = 0; i < 4; ++i) {
    SCOPED_TRACE(i);
    expectRectangle(rectangleInParent(children_[i]), expected[i][0], expected[i][1], expected[i][2],
                    expected[i][3]);
    wchar_t name[32] = {};
    GetClassNameW(children_[i], name, 32);
    EXPECT_EQ(CompareStringOrdinal(name, -1, L"button", -1, TRUE), CSTR_EQUAL);
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(children_[i], GWL_STYLE));
    EXPECT_EQ(style & 0xF, static_cast<DWORD>(BS_OWNERDRAW));
    EXPECT_EQ(style & (WS_CHILD | WS_VISIBLE), static_cast<DWORD>(WS_CHILD | WS_VISIBLE));
    // Read past the procedure: that one is a wide one which answers by the ANSI
    // default, so asking it gives the letters in bytes.
    wchar_t caption[8] = {};
    InternalGetWindowText(children_[i], caption, 8);
    EXPECT_STREQ(caption, i == 0 ? L"OK" : L"");
  }
}

TEST_F(WindowShown, GivesItsRowsTheirTextsAndTargets) {
  EXPECT_EQ(GetPropW(closeBox(), L"Linktext"), nullptr);
  EXPECT_EQ(textProperty(children_[1], L"Linktext"), L"the qelm developers");
  EXPECT_EQ(textProperty(children_[1], L"Linktarget"), L"https://qelm.example.org/");
  EXPECT_EQ(textProperty(children_[2], L"Linktext"), L"Documentation and components reference");
  EXPECT_EQ(textProperty(children_[2], L"Linktarget"), L"https://qelm.example.org/documentation");
  EXPECT_EQ(textProperty(children_[3], L"Linktext"), L"Examples download archive");
  EXPECT_EQ(textProperty(children_[3], L"Linktarget"), L"https://qelm.example.org/examples");
}

TEST_F(WindowShown, CloseBoxHasEmptiedTheHandleOnPurpose) {
  EXPECT_EQ(getPoshHandle(), nullptr);
  EXPECT_EQ(doPoshModal(makeLogo(), nullptr), 1) << "so a second window can be opened";
  const HWND first = window_;
  EXPECT_TRUE(waitFor([first] { return findWindow() != first && findWindow() != nullptr; }));
  EXPECT_TRUE(IsWindow(first));
}

TEST_F(WindowShown, DragsEverywhere) {
  EXPECT_EQ(SendMessageW(window_, WM_NCHITTEST, 0, MAKELPARAM(700, 500)), HTCAPTION);
  EXPECT_EQ(SendMessageW(window_, WM_NCHITTEST, 0, MAKELPARAM(10, 10)), HTNOWHERE);
}

TEST_F(WindowShown, ColoursStaticControlsWhiteOnBlack) {
  const HDC dc = CreateCompatibleDC(nullptr);
  const auto brush = reinterpret_cast<HBRUSH>(
      SendMessageW(window_, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc), 0));
  EXPECT_EQ(GetTextColor(dc), kWhite);
  EXPECT_EQ(GetBkColor(dc), kBlack);
  LOGBRUSH look = {};
  ASSERT_NE(GetObjectW(brush, sizeof look, &look), 0);
  EXPECT_EQ(look.lbColor, kBlack);
  const auto another = reinterpret_cast<HBRUSH>(
      SendMessageW(window_, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc), 0));
  EXPECT_NE(another, brush) << "a new one each time";
  DeleteDC(dc);
}

TEST_F(WindowShown, IsBlackWithTheLogoInTheMiddle) {
  EXPECT_EQ(pixel(window_, 3, 3), kBlack);
  EXPECT_EQ(pixel(window_, 796, 490), kBlack);
  // 120 wide: from 340 to 459, and from row 40 to 99.
  EXPECT_EQ(countPixels(window_, {300, 20, 500, 120}, kLogoColour), kLogoWidth * kLogoHeight);
  EXPECT_EQ(pixel(window_, 340, 40), kLogoColour);
  EXPECT_EQ(pixel(window_, 459, 99), kLogoColour);
  EXPECT_EQ(pixel(window_, 339, 40), kBlack);
  EXPECT_EQ(pixel(window_, 340, 39), kBlack);
}

/// First and last column of the rows [top, bottom) that is not black.
std::pair<int, int> inkExtent(HWND window, int top, int bottom) {
  int first = 800;
  int last = -1;
  for (int y = top; y < bottom; ++y) {
    for (int x = 0; x < 800; ++x) {
      if (pixel(window, x, y) == kBlack) continue;
      first = std::min(first, x);
      last = std::max(last, x);
    }
  }
  return {first, last};
}

TEST_F(WindowShown, ShowsItsTextsInCentredBands) {
  // At 96 dots an inch y0 is 229: title from 199, description from 299, version from
  // 324, "powered by" from 339; the credit row from 357.
  EXPECT_GT(countPixels(window_, {0, 199, 800, 290}, kWhite), 500);
  for (const auto& [top, bottom] : {std::pair{199, 285}, {299, 313}, {324, 337}, {341, 353}}) {
    const auto [first, last] = inkExtent(window_, top, bottom);
    ASSERT_LT(first, last) << "nothing drawn from row " << top;
    EXPECT_NEAR((first + last) / 2.0, 400, 6) << "from row " << top;
    EXPECT_GT(first, 20);
    EXPECT_LT(last, 780);
  }
  const auto [first, last] = inkExtent(window_, 110, 195);
  EXPECT_GT(first, last) << "between logo and title there is nothing";
}

/// Rows of the ink between two rows.
int inkHeight(HWND window, int top, int bottom) {
  int rows = 0;
  for (int y = top; y < bottom; ++y) rows += inkExtent(window, y, y + 1).second >= 0 ? 1 : 0;
  return rows;
}

TEST_F(WindowShown, UsesFontsOfTheRightHeights) {
  // Letters as high as "V" take about 0.72 of a character's height: 70 pixels for the
  // title; 11 for the small lines, whose letters below the line add a fifth.
  EXPECT_NEAR(inkHeight(window_, 199, 290), 0.73 * 70, 4);
  EXPECT_NEAR(inkHeight(window_, 299, 314), 0.93 * 11, 2);
  EXPECT_NEAR(inkHeight(window_, 325, 339), 0.73 * 11, 2) << "digits only";
}

TEST_F(WindowShown, CloseBoxIsDarkGreyAndLighterUnderThePointer) {
  EXPECT_EQ(pixel(closeBox(), 1, 27), RGB(30, 30, 30));
  EXPECT_GT(countPixels(closeBox(), {0, 0, 29, 29}, kWhite), 3) << "the cross";
  pointAt(closeBox(), 14, 14);
  EXPECT_TRUE(waitFor([&] { return pixel(closeBox(), 1, 27) == RGB(90, 90, 90); }));
  SetCursorPos(5, 5);
  EXPECT_TRUE(waitFor([&] { return pixel(closeBox(), 1, 27) == RGB(30, 30, 30); }));
}

TEST_F(WindowShown, LinkRowsAreWhiteAndBlueUnderThePointer) {
  constexpr COLORREF kHover = RGB(39, 184, 238);
  const RECT all = {0, 0, 400, 25};
  EXPECT_GT(countPixels(creditRow(), all, kWhite), 20);
  EXPECT_EQ(countPixels(creditRow(), all, kHover), 0);
  pointAt(creditRow(), 200, 12);
  EXPECT_TRUE(waitFor([&] { return countPixels(creditRow(), all, kHover) > 20; }));
  SetCursorPos(5, 5);
  EXPECT_TRUE(waitFor([&] { return countPixels(creditRow(), all, kHover) == 0; }));
}

TEST_F(WindowShown, LinkRowsShareOneHoverFlagOnPurpose) {
  constexpr COLORREF kHover = RGB(39, 184, 238);
  const RECT all = {0, 0, 300, 18};
  pointAt(creditRow(), 200, 12);
  ASSERT_TRUE(waitFor([&] { return countPixels(creditRow(), {0, 0, 400, 25}, kHover) > 20; }));
  EXPECT_EQ(countPixels(documentationRow(), all, kHover), 0) << "redraws only itself";
  InvalidateRect(documentationRow(), nullptr, FALSE);
  EXPECT_TRUE(waitFor([&] { return countPixels(documentationRow(), all, kHover) > 20; }))
      << "redrawn for another reason, it shows the shared flag";
}

TEST_F(WindowShown, LinkClickRunsTheStartCommandAndLeavesTheWindowOpen) {
  // The recorder stands in for the command interpreter and notes its command line.
  wchar_t self[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, self, MAX_PATH);
  const fs::path recorder = fs::path(self).parent_path() / "command_recorder.exe";
  const fs::path record = fs::temp_directory_path() / "qelm-recorded-command.txt";
  ASSERT_TRUE(fs::exists(recorder));
  fs::remove(record);
  _wputenv_s(L"COMSPEC", recorder.c_str());
  _wputenv_s(L"QELM_RECORD", record.c_str());
  SendMessageW(documentationRow(), WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
  ASSERT_TRUE(waitFor([&] { return fs::exists(record) && fs::file_size(record) > 0; }));
  std::ifstream file(record);
  const std::string line{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_NE(line.find("start \"\" \"https://qelm.example.org/documentation\""), std::string::npos)
      << line;
  EXPECT_TRUE(IsWindow(window_));
}

TEST_F(WindowShown, CloseClickEndsTheThreadAndUnregistersTheClass) {
  ASSERT_TRUE(shortClassIsRegistered());
  PostMessageW(closeBox(), WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
  EXPECT_TRUE(waitFor([&] { return !IsWindow(window_); }));
  EXPECT_TRUE(waitFor([] { return !shortClassIsRegistered(); }));
}

class Marker : public WindowShown {
 protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() / "qelm-marker";
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    SetEnvironmentVariableW(L"appdata", folder_.c_str());
    WindowShown::SetUp();
  }
  fs::path folder_;
};

TEST_F(Marker, IsAnEmptyFileAfterACommandNotification) {
  const fs::path marker = folder_ / "VantleTermsAgreed.txt";
  EXPECT_FALSE(fs::exists(marker));
  SendMessageW(window_, WM_COMMAND, 0, 0);
  ASSERT_TRUE(fs::exists(marker));
  EXPECT_EQ(fs::file_size(marker), 0U);
}

TEST_F(Marker, LeavesAnExistingFileUntouched) {
  const fs::path marker = folder_ / "VantleTermsAgreed.txt";
  std::ofstream(marker) << "kept";
  SendMessageW(window_, WM_COMMAND, 0, 0);
  EXPECT_EQ(fs::file_size(marker), 4U);
}

TEST_F(Marker, WithoutAFolderOrWithTooLongAOneDoesNoHarm) {
  SetCurrentDirectoryW(L"C:\\");
  const fs::path atRoot = L"C:\\VantleTermsAgreed.txt";
  for (const std::wstring& value : {std::wstring(), std::wstring(6000, L'x')}) {
    fs::remove(atRoot);
    SetEnvironmentVariableW(L"appdata", value.empty() ? nullptr : value.c_str());
    SendMessageW(window_, WM_COMMAND, 0, 0);
    EXPECT_TRUE(fs::exists(atRoot)) << "a name without a folder is at the root";
  }
  fs::remove(atRoot);
  EXPECT_TRUE(IsWindow(window_));
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
