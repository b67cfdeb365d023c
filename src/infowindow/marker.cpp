// The record that the terms were accepted.
#include <windows.h>

#include <string>

#include "infowindow/layout.h"
#include "infowindow/window.h"

namespace qelm::infowindow {
namespace {

/// Empty if it is not set, or longer than there is room for.
std::wstring applicationDataFolder() {
  wchar_t value[kFolderRoom] = {};
  const DWORD length = GetEnvironmentVariableW(L"appdata", value, kFolderRoom);
  return length < kFolderRoom ? std::wstring(value, length) : std::wstring();
}

}  // namespace

void writeMarker() {
  const std::wstring path = markerPath(applicationDataFolder());
  if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return;
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
}

}  // namespace qelm::infowindow
