// Stands in for the command interpreter: writes its command line to the file that
// QELM_RECORD names.
#include <windows.h>

#include <cstdio>
#include <cstdlib>

int main() {
  const wchar_t* path = _wgetenv(L"QELM_RECORD");
  if (path == nullptr) return 1;
  std::FILE* file = _wfopen(path, L"w");
  if (file == nullptr) return 1;
  std::fprintf(file, "%ls", GetCommandLineW());
  std::fclose(file);
  return 0;
}
