// Files into memory: small and large, whole and cut short meanwhile.
#include "files/file_bytes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "files/paths.h"
#include "text/error.h"

namespace {

using qelm::tool::FileBytes;
using qelm::tool::FileError;
using qelm::tool::readFile;
using qelm::tool::readFileBytes;
using qelm::tool::toPath;

// Beyond what is copied on Linux, and no whole number of pages.
constexpr std::size_t kLarge = (1 << 19) + 123;

std::string content(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t k = 0; k < size; ++k) bytes[k] = static_cast<char>('a' + k % 23);
  return bytes;
}

class FileBytesTest : public testing::Test {
 protected:
  ~FileBytesTest() override {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  void write(std::string_view bytes) const { std::ofstream(path_, std::ios::binary) << bytes; }

  std::filesystem::path path_ =
      toPath(std::string("file_bytes_") +
             testing::UnitTest::GetInstance()->current_test_info()->name() + ".bin");
};

TEST_F(FileBytesTest, AreThoseOfTheFileWhateverItsSize) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, kLarge, std::size_t{1} << 19}) {
    write(content(size));
    const FileBytes bytes = readFileBytes(path_);
    EXPECT_EQ(std::string_view(bytes), content(size));
    bytes.requireWhole(path_);
    EXPECT_EQ(readFile(path_), content(size));
  }
}

TEST_F(FileBytesTest, OfTwoFilesAtOnceAreTheirOwn) {
  write(content(kLarge));
  const FileBytes first = readFileBytes(path_);
  const FileBytes second = readFileBytes(path_);
  EXPECT_EQ(std::string_view(first), std::string_view(second));
  EXPECT_NE(std::string_view(first).data(), std::string_view(second).data());
}

#ifndef _WIN32
TEST_F(FileBytesTest, AreZerosWhereTheFileHasBecomeShorterAndItIsSaid) {
  for (int time = 0; time < 2; ++time) {
    write(content(kLarge));
    const FileBytes bytes = readFileBytes(path_);
    constexpr std::size_t kLeft = 1 << 17;
    std::filesystem::resize_file(path_, kLeft);
    const std::string_view all = bytes;
    EXPECT_EQ(all.substr(0, kLeft), content(kLarge).substr(0, kLeft));
    EXPECT_EQ(all.substr(kLeft), std::string(kLarge - kLeft, '\0'));
    EXPECT_THROW(bytes.requireWhole(path_), FileError);
  }
  write(content(kLarge));
  readFileBytes(path_).requireWhole(path_);  // what was missing is of another file
}
#endif

TEST_F(FileBytesTest, ThatAreNotThereAreNamed) {
  EXPECT_THROW(readFileBytes(toPath("no such file.bin")), FileError);
  EXPECT_THROW(readFileBytes(toPath(".")), FileError);
}

}  // namespace
