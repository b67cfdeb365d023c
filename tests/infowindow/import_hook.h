// Stands between qelm.dll and the functions that it imports, in this process only.
#ifndef QELM_TESTS_INFOWINDOW_IMPORT_HOOK_H
#define QELM_TESTS_INFOWINDOW_IMPORT_HOOK_H

namespace qelm::test {

/// Makes qelm.dll call `replacement` for its import `name`, for good. The address it
/// called before is returned; null if it imports no such function.
void* replaceImport(const char* name, void* replacement);

template <class Function>
void hookImport(const char* name, Function* replacement, Function*& former) {
  former = reinterpret_cast<Function*>(replaceImport(name, reinterpret_cast<void*>(replacement)));
}

}  // namespace qelm::test

#endif  // QELM_TESTS_INFOWINDOW_IMPORT_HOOK_H
