// What is drawn in the window's client area, and how text looks everywhere in it.
#include <windows.h>

#include <cstring>
#include <cwchar>

#include "infowindow/layout.h"
#include "infowindow/window.h"
#include "interface/index.h"

namespace qelm::infowindow {
namespace {

constexpr wchar_t kTitle[] = L"Vantle";
constexpr wchar_t kDescription[] =
    L"infinitely smooth curves on surfaces, defined by your boundary conditions";
constexpr char kVersion[] = "0.7.7002.1014";
constexpr wchar_t kPoweredBy[] = L"powered by";

void drawLogo(HDC dc, HBITMAP bitmap, const BITMAP& logo, Point at) {
  const HDC memory = CreateCompatibleDC(dc);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  BitBlt(dc, at.x, at.y, logo.bmWidth, logo.bmHeight, memory, 0, 0, SRCCOPY);
  SelectObject(memory, before);
  DeleteDC(memory);
}

void drawText(HDC dc, HFONT font, int x, int y, const wchar_t* text) {
  SelectObject(dc, font);
  TextOutW(dc, x, y, text, asInt(std::wcslen(text)));
}

struct Fonts {
  HFONT title, description, small;
};

void drawTexts(HDC dc, const PaintLayout& at, const Fonts& fonts) {
  const HGDIOBJ before = GetCurrentObject(dc, OBJ_FONT);
  setTextStyle(dc, RGB(255, 255, 255));
  drawText(dc, fonts.title, at.textCentre, at.titleTop, kTitle);
  drawText(dc, fonts.description, at.textCentre, at.descriptionTop, kDescription);
  SelectObject(dc, fonts.small);
  TextOutA(dc, at.textCentre, at.versionTop, kVersion, asInt(std::strlen(kVersion)));
  drawText(dc, fonts.small, at.textCentre, at.poweredByTop, kPoweredBy);
  SelectObject(dc, before);
}

}  // namespace

void setTextStyle(HDC dc, COLORREF colour) {
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, colour);
  SetTextAlign(dc, TA_CENTER | TA_TOP);
}

HFONT makeFont(int height, const wchar_t* face) {
  return CreateFontW(height, 0, 0, 0, 0, FALSE, FALSE, FALSE, 0, 0, 0, ANTIALIASED_QUALITY, 0,
                     face);
}

void paintWindow(HWND window) {
  RECT client;
  GetClientRect(window, &client);
  InvalidateRect(window, &client, TRUE);
  PAINTSTRUCT paint;
  const HDC dc = BeginPaint(window, &paint);
  BITMAP logo = {};
  const HBITMAP bitmap = poshLogo;
  GetObjectA(bitmap, sizeof logo, &logo);
  const PaintLayout at =
      layOutText(client.right, client.bottom, GetDeviceCaps(dc, LOGPIXELSY), logo.bmWidth);
  drawLogo(dc, bitmap, logo, at.logo);
  const Fonts fonts = {makeFont(at.titleFontHeight, L"Arial"),
                       makeFont(at.textFontHeight, L"Helvetica"),
                       makeFont(at.textFontHeight, L"Helvetica")};
  drawTexts(dc, at, fonts);
  EndPaint(window, &paint);
  for (const HFONT font : {fonts.title, fonts.description, fonts.small}) DeleteObject(font);
}

}  // namespace qelm::infowindow
