#include <windows.h>

#include <filesystem>

#include "export/output_file.h"
#include "interface/index.h"

namespace qelm {
namespace {

/// Empty if the name cannot be converted, or is empty itself.
std::wstring widened(const std::string& name) {
  const UINT codePage = AreFileApisANSI() != 0 ? CP_ACP : CP_OEMCP;
  const int length = asInt(name.size());
  const int needed = MultiByteToWideChar(codePage, 0, name.data(), length, nullptr, 0);
  std::wstring wide(asIndex(needed > 0 ? needed : 0), L'\0');
  MultiByteToWideChar(codePage, 0, name.data(), length, wide.data(), needed);
  return wide;
}

}  // namespace

std::ofstream openForWriting(const std::string& name) {
  return std::ofstream(std::filesystem::path(widened(name)));
}

}  // namespace qelm
