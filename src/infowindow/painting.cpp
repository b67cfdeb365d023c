// What is drawn in the window's client area, and how text looks everywhere in it.
#include <windows.h>

#include <cstring>
#include <cwchar>

#include "infowindow/layout.h"
#include "infowindow/window.h"

namespace qelm::infowindow {
namespace {

constexpr wchar_t kTitle[] = L"Vantle";
constexpr wchar_t kDescription[] =
    L"infinitely smooth curves on surfaces, defined by your boundary conditions";
constexpr char kVersion[] = "0.7.7002.1014";
constexpr wchar_t kPoweredBy[] = L"powered by";

void drawLogo(HDC dc, const BITMAP& logo, Point at) {
  const HDC memory = CreateCompatibleDC(dc);
  const HGDIOBJ before = SelectObject(memory, poshLogo);
  BitBlt(dc, at.x, at.y, logo.bmWidth, logo.bmHeight, memory, 0, 0, SRCCOPY);
  SelectObject(memory, before);
  DeleteDC(memory);
}

void drawText(HDC dc, HFONT font, int x, int y, const wchar_t* text) {
  SelectObject(dc, font);
  TextOutW(dc, x, y, text, static_cast<int>(std::wcslen(text)));
}

void drawTexts(HDC dc, const PaintLayout& at) {
  const HFONT title = makeFont(at.titleFontHeight, L"Arial");
  const HFONT description = makeFont(at.textFontHeight, L"Helvetica");
  const HFONT small = makeFont(at.textFontHeight, L"Helvetica");
  const HGDIOBJ before = GetCurrentObject(dc, OBJ_FONT);
  setTextStyle(dc, RGB(255, 255, 255));
  drawText(dc, title, at.textCentre, at.titleTop, kTitle);
  drawText(dc, description, at.textCentre, at.descriptionTop, kDescription);
  SelectObject(dc, small);
  TextOutA(dc, at.textCentre, at.versionTop, kVersion, static_cast<int>(std::strlen(kVersion)));
  drawText(dc, small, at.textCentre, at.poweredByTop, kPoweredBy);
  SelectObject(dc, before);
  for (const HFONT font : {title, description, small}) DeleteObject(font);
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
  GetObjectA(poshLogo, sizeof logo, &logo);
  const PaintLayout at =
      layOutText(client.right, client.bottom, GetDeviceCaps(dc, LOGPIXELSY), logo.bmWidth);
  drawLogo(dc, logo, at.logo);
  drawTexts(dc, at);
  EndPaint(window, &paint);
}

}  // namespace qelm::infowindow
