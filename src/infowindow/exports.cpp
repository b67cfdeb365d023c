// The exports and the window's thread.
#include <windows.h>

#include <cstdlib>

#include "infowindow/layout.h"
#include "infowindow/window.h"
#include "qelm.h"

namespace qelm::infowindow {

std::atomic<HWND> poshWindowHandle = nullptr;
HBITMAP poshLogo = nullptr;
RECT poshBorder = {};

namespace {

// Results of doPoshModal().
constexpr int kNoThread = 0;
constexpr int kStarted = 1;
constexpr int kAlreadyOpen = 2;
constexpr int kSuppressed = 3;

constexpr wchar_t kClassName[] = L"QuobinsCoolClass";

// The wide name goes to the ANSI class calls as it is, so they take its first letter
// alone for the name, while the window is created by the wide call with all of it.
// The pairing is kept exactly so: a window appears only in a process that registers
// the full name by other means.
const char* const kAnsiClassName = reinterpret_cast<const char*>(kClassName);

struct StartBlock {
  HBITMAP logo;
  HWND owner;
};

/// Reads the switch, and empties the handle if it is set.
bool isSuppressed() {
  char value[256];
  if (!countsAsSet(GetEnvironmentVariableA("BLOCK_FILEIO", value, sizeof value))) return false;
  poshWindowHandle = nullptr;
  return true;
}

bool classIsRegistered(HINSTANCE module) {
  WNDCLASSA found;
  return GetClassInfoA(module, kAnsiClassName, &found) != 0;
}

bool registerClass(HINSTANCE module) {
  WNDCLASSA record = {};
  record.style = CS_HREDRAW | CS_VREDRAW;
  record.lpfnWndProc = poshWindowProc;
  record.hInstance = module;
  record.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  record.hbrBackground = CreateSolidBrush(RGB(0, 0, 0));
  record.lpszClassName = kAnsiClassName;
  return RegisterClassA(&record) != 0;
}

Point positionFor(HWND owner) {
  if (owner == nullptr) return kDefaultPosition;
  RECT r = {};
  GetWindowRect(owner, &r);  // leaves the top at 0 if it fails
  return positionOver({r.left, r.top, r.right, r.bottom});
}

bool openWindow(HINSTANCE module, HWND owner) {
  const Point position = positionFor(owner);
  const HWND window =
      CreateWindowExW(0, kClassName, nullptr, WS_POPUP | WS_VISIBLE, position.x, position.y,
                      kWindowWidth, kWindowHeight, owner, nullptr, module, nullptr);
  poshWindowHandle = window;
  if (window == nullptr) return false;
  SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(poshWindowProc));
  return true;
}

void runMessages() {
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) != 0) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

void closeWindow(HINSTANCE module) {
  DestroyWindow(poshWindowHandle);  // may be null by now
  poshWindowHandle = nullptr;
  if (classIsRegistered(module)) UnregisterClassA(kAnsiClassName, module);
}

// Every failure ends the thread without a word. A class that was registered stays
// then; the next window finds and uses it.
DWORD WINAPI windowThread(void* argument) {
  const StartBlock start = *static_cast<StartBlock*>(argument);
  std::free(argument);
  if (isSuppressed()) return 0;
  if (start.logo == nullptr) return 0;
  poshLogo = start.logo;
  const HINSTANCE module = GetModuleHandleA(nullptr);
  if (!classIsRegistered(module) && !registerClass(module)) return 0;
  if (!openWindow(module, start.owner)) return 0;
  runMessages();
  closeWindow(module);
  return 0;
}

}  // namespace
}  // namespace qelm::infowindow

extern "C" int doPoshModal(void* logo, void* owner) {
  using namespace qelm::infowindow;
  if (isSuppressed()) return kSuppressed;
  // An unlocked test: two calls at once, or any call after the close box has emptied
  // the handle, can start a second window.
  if (poshWindowHandle != nullptr) return kAlreadyOpen;
  auto* block = static_cast<StartBlock*>(std::malloc(sizeof(StartBlock)));
  if (block == nullptr) return kAlreadyOpen;
  *block = {static_cast<HBITMAP>(logo), static_cast<HWND>(owner)};
  const HANDLE thread = CreateThread(nullptr, 0, windowThread, block, 0, nullptr);
  // Without a thread the block is not freed. That is how it has always been, and it
  // is 16 bytes in a process that can start no threads.
  if (thread == nullptr) return kNoThread;
  CloseHandle(thread);  // never joined
  return kStarted;
}

extern "C" void* getPoshHandle(void) { return qelm::infowindow::poshWindowHandle; }
