// The record that the terms were accepted.
#include <windows.h>

#include <string_view>

#include "infowindow/layout.h"
#include "infowindow/window.h"

namespace qelm::infowindow {
namespace {

/// Empty if it is not set, or longer than there is room for.
std::wstring_view applicationDataFolder(wchar_t (&room)[kFolderRoom]) {
  const DWORD length = GetEnvironmentVariableW(L"appdata", room, kFolderRoom);
  return {room, length < kFolderRoom ? length : 0};
}

}  // namespace

void writeMarker() {
  wchar_t room[kFolderRoom];
  const auto path = markerPath(applicationDataFolder(room));
  if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return;
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
}

}  // namespace qelm::infowindow
