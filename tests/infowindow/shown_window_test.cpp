// What an open information window looks like and does. Each scenario runs in a process of its
// own, with a desktop; see test_window.py.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>

#include "infowindow/desktop.h"
#include "infowindow/shown_window.h"
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

}  // namespace
}  // namespace qelm::test
