// What the window draws with, where, and what it deletes: watched at its own GDI calls.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "infowindow/desktop.h"
#include "infowindow/import_hook.h"
#include "qelm.h"

namespace qelm::test {
namespace {

struct DrawnText {
  std::wstring text;
  int x, y;
  UINT alignment;
  COLORREF colour;
  int background;
  LONG height, weight;
  BYTE quality;
  std::wstring face;
};

/// What the window's thread did. Read under the mutex.
struct Log {
  std::vector<DrawnText> texts;
  std::map<HGDIOBJ, std::string> living;
  int closeBoxBrushes = 0;
  int linkBrushesDeleted = 0;
  bool painting = false;
  int fontsDeletedWhilePainting = 0;
  HCURSOR cursor = nullptr;
};
std::mutex guard;
Log recorded;

decltype(&CreateSolidBrush) realCreateSolidBrush = nullptr;
decltype(&CreateFontW) realCreateFont = nullptr;
decltype(&CreateFontIndirectW) realCreateFontIndirect = nullptr;
decltype(&CreateCompatibleDC) realCreateCompatibleDC = nullptr;
decltype(&DeleteObject) realDeleteObject = nullptr;
decltype(&DeleteDC) realDeleteDC = nullptr;
decltype(&TextOutW) realTextOutW = nullptr;
decltype(&TextOutA) realTextOutA = nullptr;
decltype(&BeginPaint) realBeginPaint = nullptr;
decltype(&EndPaint) realEndPaint = nullptr;
decltype(&SetCursor) realSetCursor = nullptr;

template <class Handle>
Handle born(Handle handle, const char* kind) {
  const std::lock_guard lock(guard);
  recorded.living[handle] = kind;
  return handle;
}

HBRUSH WINAPI notingCreateSolidBrush(COLORREF colour) {
  const bool ofCloseBox = colour == RGB(30, 30, 30) || colour == RGB(90, 90, 90);
  const HBRUSH brush = born(realCreateSolidBrush(colour), ofCloseBox ? "close box" : "brush");
  const std::lock_guard lock(guard);
  recorded.closeBoxBrushes += ofCloseBox ? 1 : 0;
  return brush;
}
HFONT WINAPI notingCreateFont(int height, int width, int escapement, int orientation, int weight,
                              DWORD italic, DWORD underline, DWORD strikeOut, DWORD charSet,
                              DWORD output, DWORD clip, DWORD quality, DWORD pitch, LPCWSTR face) {
  EXPECT_EQ(width | escapement | orientation | weight, 0);
  EXPECT_EQ(italic | underline | strikeOut | charSet | output | clip | pitch, 0U);
  return born(realCreateFont(height, width, escapement, orientation, weight, italic, underline,
                             strikeOut, charSet, output, clip, quality, pitch, face),
              "font");
}
HFONT WINAPI notingCreateFontIndirect(const LOGFONTW* font) {
  return born(realCreateFontIndirect(font), "font");
}
HDC WINAPI notingCreateCompatibleDC(HDC dc) { return born(realCreateCompatibleDC(dc), "device"); }

void gone(HGDIOBJ object) {
  const std::lock_guard lock(guard);
  const auto found = recorded.living.find(object);
  if (found == recorded.living.end()) return;
  if (found->second == "font" && recorded.painting) ++recorded.fontsDeletedWhilePainting;
  if (found->second == "brush") ++recorded.linkBrushesDeleted;
  recorded.living.erase(found);
}
BOOL WINAPI notingDeleteObject(HGDIOBJ object) {
  gone(object);
  return realDeleteObject(object);
}
BOOL WINAPI notingDeleteDC(HDC dc) {
  gone(dc);
  return realDeleteDC(dc);
}

// The real calls may send messages, whose handling is noted, too: the mutex is free meanwhile.
void setPainting(bool painting) {
  const std::lock_guard lock(guard);
  recorded.painting = painting;
}
HDC WINAPI notingBeginPaint(HWND window, PAINTSTRUCT* paint) {
  setPainting(true);
  return realBeginPaint(window, paint);
}
BOOL WINAPI notingEndPaint(HWND window, const PAINTSTRUCT* paint) {
  setPainting(false);
  return realEndPaint(window, paint);
}

void note(HDC dc, int x, int y, std::wstring text) {
  LOGFONTW font = {};
  GetObjectW(GetCurrentObject(dc, OBJ_FONT), sizeof font, &font);
  const std::lock_guard lock(guard);
  recorded.texts.push_back({std::move(text), x, y, GetTextAlign(dc), GetTextColor(dc),
                            GetBkMode(dc), font.lfHeight, font.lfWeight, font.lfQuality,
                            font.lfFaceName});
}
BOOL WINAPI notingTextOutW(HDC dc, int x, int y, LPCWSTR text, int length) {
  note(dc, x, y, std::wstring(text, static_cast<std::size_t>(length)));
  return realTextOutW(dc, x, y, text, length);
}
BOOL WINAPI notingTextOutA(HDC dc, int x, int y, LPCSTR text, int length) {
  note(dc, x, y, std::wstring(text, text + length));
  return realTextOutA(dc, x, y, text, length);
}
HCURSOR WINAPI notingSetCursor(HCURSOR cursor) {
  const std::lock_guard lock(guard);
  recorded.cursor = cursor;
  return realSetCursor(cursor);
}

Log snapshot() {
  const std::lock_guard lock(guard);
  return recorded;
}

/// The last time that a text was drawn.
DrawnText lastDrawn(const std::wstring& text) {
  const Log log = snapshot();
  const auto found = std::find_if(log.texts.rbegin(), log.texts.rend(),
                                  [&](const DrawnText& t) { return t.text == text; });
  EXPECT_NE(found, log.texts.rend()) << "never drawn: " << std::string(text.begin(), text.end());
  return found == log.texts.rend() ? DrawnText{} : *found;
}

void watchDrawing() {
  hookImport("CreateSolidBrush", notingCreateSolidBrush, realCreateSolidBrush);
  hookImport("CreateFontW", notingCreateFont, realCreateFont);
  hookImport("CreateFontIndirectW", notingCreateFontIndirect, realCreateFontIndirect);
  hookImport("CreateCompatibleDC", notingCreateCompatibleDC, realCreateCompatibleDC);
  hookImport("DeleteObject", notingDeleteObject, realDeleteObject);
  hookImport("DeleteDC", notingDeleteDC, realDeleteDC);
  hookImport("TextOutW", notingTextOutW, realTextOutW);
  hookImport("TextOutA", notingTextOutA, realTextOutA);
  hookImport("BeginPaint", notingBeginPaint, realBeginPaint);
  hookImport("EndPaint", notingEndPaint, realEndPaint);
  hookImport("SetCursor", notingSetCursor, realSetCursor);
}

class Drawing : public testing::Test {
 protected:
  void SetUp() override {
    registerFullClass(Procedure::ownOne);
    watchDrawing();
    SetCursorPos(5, 5);
    window_ = openWindow();
    ASSERT_NE(window_, nullptr);
    children_ = childrenOf(window_);
    ASSERT_EQ(children_.size(), 4U);
  }
  HWND window_ = nullptr;
  std::vector<HWND> children_;
};

void expectDrawn(const std::wstring& text, int x, int y, UINT alignment, LONG height, LONG weight,
                 const wchar_t* face) {
  SCOPED_TRACE(std::string(text.begin(), text.end()));
  const DrawnText drawn = lastDrawn(text);
  EXPECT_EQ(drawn.x, x);
  EXPECT_EQ(drawn.y, y);
  EXPECT_EQ(drawn.alignment, alignment);
  EXPECT_EQ(drawn.colour, RGB(255, 255, 255));
  EXPECT_EQ(drawn.background, TRANSPARENT);
  EXPECT_EQ(drawn.height, height);
  EXPECT_EQ(drawn.weight, weight);
  EXPECT_EQ(drawn.face, face);
}

TEST_F(Drawing, PutsEveryTextInItsPlaceAndFont) {
  constexpr UINT kCentred = TA_CENTER | TA_TOP;
  const HDC screen = GetDC(nullptr);
  ASSERT_EQ(GetDeviceCaps(screen, LOGPIXELSY), 96) << "the figures below are for 96";
  ReleaseDC(nullptr, screen);
  expectDrawn(L"Vantle", 400, 199, kCentred, -70, 0, L"Arial");
  expectDrawn(L"infinitely smooth curves on surfaces, defined by your boundary conditions", 400,
              299, kCentred, -11, 0, L"Helvetica");
  expectDrawn(L"0.7.7002.1014", 400, 324, kCentred, -11, 0, L"Helvetica");
  expectDrawn(L"powered by", 400, 339, kCentred, -11, 0, L"Helvetica");
  expectDrawn(L"\x2715", 6, -1, TA_LEFT | TA_TOP, 29, 0, L"Helvetica");
  expectDrawn(L"the qelm developers", 200, 0, kCentred, 25, 650, L"Helvetica");
  expectDrawn(L"Documentation and components reference", 150, 0, kCentred, 18, 650, L"Helvetica");
  expectDrawn(L"Examples download archive", 150, 0, kCentred, 18, 650, L"Helvetica");
  EXPECT_EQ(lastDrawn(L"Vantle").quality, ANTIALIASED_QUALITY);
  EXPECT_EQ(lastDrawn(L"\x2715").quality, ANTIALIASED_QUALITY);
}

TEST_F(Drawing, MakesAHoveredRowBolderAndBlue) {
  const std::wstring text = L"the qelm developers";
  pointAt(children_[1], 200, 12);
  EXPECT_TRUE(waitFor([&] { return lastDrawn(text).weight == 750; }));
  EXPECT_EQ(lastDrawn(text).colour, RGB(39, 184, 238));
  SetCursorPos(5, 5);
  EXPECT_TRUE(waitFor([&] { return lastDrawn(text).weight == 650; }));
}

TEST_F(Drawing, ShowsTheHandWhileHoveredAndTheArrowOtherwise) {
  for (const std::size_t child : {0, 1}) {
    SCOPED_TRACE(child);
    EXPECT_EQ(SendMessageW(children_[child], WM_SETCURSOR, 0, 0), TRUE);
    EXPECT_EQ(snapshot().cursor, LoadCursorA(nullptr, IDC_ARROW));
    pointAt(children_[child], 14, 14);
    // Asked for anew each time: the pointer's own question comes before it hovers.
    EXPECT_TRUE(waitFor([&] {
      SendMessageW(children_[child], WM_SETCURSOR, 0, 0);
      return snapshot().cursor == LoadCursorA(nullptr, IDC_HAND);
    }));
    SetCursorPos(5, 5);
    letTimePass(500);
  }
}

TEST_F(Drawing, LeavesTheCloseBoxsBrushesAndNothingElseOnPurpose) {
  for (int i = 0; i < 20; ++i) {
    const std::size_t drawn = snapshot().texts.size();
    InvalidateRect(window_, nullptr, TRUE);  // its children with it
    ASSERT_TRUE(waitFor([&] { return snapshot().texts.size() >= drawn + 8; }));
  }
  letTimePass(200);
  const Log log = snapshot();
  EXPECT_GE(log.closeBoxBrushes, 20);
  EXPECT_GE(log.linkBrushesDeleted, 3 * 20) << "a row deletes its brush at once";
  std::map<std::string, int> left;
  for (const auto& [object, kind] : log.living) ++left[kind];
  EXPECT_EQ(left["close box"], log.closeBoxBrushes) << "one for every paint";
  EXPECT_EQ(left["font"], 0);
  EXPECT_EQ(left["device"], 0);
  EXPECT_EQ(left["brush"], 0);
}

TEST_F(Drawing, DeletesFontsOnlyAfterPainting) {
  EXPECT_EQ(snapshot().fontsDeletedWhilePainting, 0);
}

TEST_F(Drawing, GivesEveryChildTheStockFont) {
  WNDCLASSW button = {};
  ASSERT_TRUE(GetClassInfoW(nullptr, L"button", &button));
  for (const HWND child : children_) {
    // The font went to the button's own procedure, which alone can give it back.
    SetWindowLongPtrW(child, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(button.lpfnWndProc));
    EXPECT_EQ(reinterpret_cast<HGDIOBJ>(SendMessageW(child, WM_GETFONT, 0, 0)),
              GetStockObject(DEFAULT_GUI_FONT));
  }
}

RECT sizedClient(HWND window, LONG_PTR style) {
  SetWindowLongPtrW(window, GWL_STYLE, WS_POPUP | WS_VISIBLE | style);
  SendMessageW(window, WM_CREATE, 0, 0);
  RECT r = {100, 200, 300, 400};
  EXPECT_EQ(SendMessageW(window, WM_NCCALCSIZE, FALSE, reinterpret_cast<LPARAM>(&r)), 0);
  return r;
}

void expectEdges(const RECT& r, LONG left, LONG top, LONG right, LONG bottom) {
  EXPECT_EQ(r.left, left);
  EXPECT_EQ(r.top, top);
  EXPECT_EQ(r.right, right);
  EXPECT_EQ(r.bottom, bottom);
}

TEST_F(Drawing, SubtractsTheFrameExceptAtTheTop) {
  expectEdges(sizedClient(window_, 0), 100, 200, 300, 400);
  expectEdges(sizedClient(window_, WS_BORDER), 101, 200, 299, 399);
  RECT frame = {};
  const DWORD style = WS_POPUP | WS_VISIBLE | WS_THICKFRAME;
  ASSERT_TRUE(AdjustWindowRectEx(&frame, style, FALSE, 0));
  ASSERT_LT(frame.left, 0);
  expectEdges(sizedClient(window_, WS_THICKFRAME), 100 - frame.left, 200, 300 - frame.right,
              400 - frame.bottom);
  expectEdges(sizedClient(window_, WS_THICKFRAME | WS_CAPTION), 100 - frame.left, 200,
              300 - frame.right, 400 - frame.bottom);
}

}  // namespace
}  // namespace qelm::test
