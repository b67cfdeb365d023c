#include "infowindow/import_hook.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>

namespace qelm::test {
namespace {

template <class T>
T* at(char* base, ULONGLONG offset) {
  return reinterpret_cast<T*>(base + offset);
}

/// The slot of the import address table that holds `name`, or null.
IMAGE_THUNK_DATA* findSlot(char* base, const char* name) {
  const auto* headers =
      at<IMAGE_NT_HEADERS>(base, static_cast<ULONG>(at<IMAGE_DOS_HEADER>(base, 0)->e_lfanew));
  const DWORD table =
      headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
  for (auto* module = at<IMAGE_IMPORT_DESCRIPTOR>(base, table); module->Name != 0; ++module) {
    auto* names = at<IMAGE_THUNK_DATA>(base, module->OriginalFirstThunk);
    auto* slots = at<IMAGE_THUNK_DATA>(base, module->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++slots) {
      if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
      const auto* entry = at<IMAGE_IMPORT_BY_NAME>(base, names->u1.AddressOfData);
      if (std::strcmp(reinterpret_cast<const char*>(entry->Name), name) == 0) return slots;
    }
  }
  return nullptr;
}

}  // namespace

void* replaceImport(const char* name, void* replacement) {
  IMAGE_THUNK_DATA* slot = findSlot(reinterpret_cast<char*>(GetModuleHandleA("qelm.dll")), name);
  EXPECT_NE(slot, nullptr) << name;
  if (slot == nullptr) return nullptr;
  DWORD protection = 0;
  VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
  void* former = reinterpret_cast<void*>(slot->u1.Function);
  slot->u1.Function = reinterpret_cast<ULONGLONG>(replacement);
  VirtualProtect(slot, sizeof *slot, protection, &protection);
  return former;
}

}  // namespace qelm::test
