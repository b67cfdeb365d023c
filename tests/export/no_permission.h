// A file that cannot be written, even by root or an administrator.
#ifndef QELM_TESTS_EXPORT_NO_PERMISSION_H
#define QELM_TESTS_EXPORT_NO_PERMISSION_H

#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

#include <filesystem>
#include <string>

namespace qelm::test {

/// Keeps this process from writing a file, while it lives.
class NoPermission {
 public:
#ifdef _WIN32
  // Rights do not stop an administrator; a handle that shares nothing does.
  explicit NoPermission(const std::string& file)
      : file_(CreateFileA(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
    EXPECT_NE(file_, INVALID_HANDLE_VALUE);
  }
  ~NoPermission() { CloseHandle(file_); }

 private:
  HANDLE file_;
#else
  // Rights do not stop root; being somebody else for a while does.
  explicit NoPermission(const std::string& file) : user_(geteuid()) {
    std::filesystem::permissions(
        file, std::filesystem::perms::owner_read | std::filesystem::perms::others_read);
    if (user_ == 0) {
      EXPECT_EQ(seteuid(kNobody), 0);
    }
  }
  ~NoPermission() {
    if (user_ == 0) {
      EXPECT_EQ(seteuid(0), 0);
    }
  }

 private:
  static constexpr uid_t kNobody = 65534;
  uid_t user_;
#endif
};

}  // namespace qelm::test

#endif  // QELM_TESTS_EXPORT_NO_PERMISSION_H
