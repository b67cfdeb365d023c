// What is left of a heat map when its writing fails, at every place where it can.
#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/resource.h>

#include <csignal>
#endif

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "export/heat_map.h"
#include "export/no_permission.h"
#include "export/plain_heat_map.h"
#include "interface/mesh_system.h"
#include "qelm.h"
#include "support/handle.h"
#include "support/meshes.h"

namespace qelm::test {
namespace {

namespace fs = std::filesystem;

/// Takes what it is given, until its call number `failing` (counted from 0), which and
/// everything after which it refuses.
class FailingBuffer : public std::streambuf {
 public:
  explicit FailingBuffer(std::size_t failing) : failing_(failing) {}
  std::size_t calls() const { return calls_; }
  const std::string& taken() const { return taken_; }

 private:
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    if (calls_++ >= failing_) return 0;
    taken_.append(text, static_cast<std::size_t>(count));
    return count;
  }
  int_type overflow(int_type) override {
    ++calls_;
    return traits_type::eof();
  }

  std::size_t failing_;
  std::size_t calls_ = 0;
  std::string taken_;
};

struct Example {
  Mesh mesh = gridMesh(60, 60);
  Field field = mesh.sample([](const Point& p) { return p.x * p.x - 0.3 * p.y; });
};

TEST(WriteFaults, OfEveryBlockInTurnLeaveThePartBeforeAndEndTheWriting) {
  const Example example;
  const HeatMap map{example.mesh.vertices, example.mesh.triangles, example.field};
  std::ostringstream whole;
  writeObj(whole, map, "mesh");

  std::size_t failing = 0;
  for (bool failed = true; failed; ++failing) {
    SCOPED_TRACE(failing);
    FailingBuffer buffer(failing);
    std::ostream out(&buffer);
    ASSERT_NO_THROW(writeObj(out, map, "mesh"));
    failed = !out.good();
    EXPECT_EQ(failed, buffer.calls() > failing);
    EXPECT_LE(buffer.calls(), failing + 1) << "nothing is tried after the failure";
    EXPECT_EQ(buffer.taken(), whole.str().substr(0, buffer.taken().size()));
    EXPECT_EQ(failed, buffer.taken().size() < whole.str().size());
  }
  EXPECT_GT(failing, 4U) << "the example is too small to be written in several blocks";
}

TEST(WriteFaults, OfTheMaterialLeaveNothing) {
  FailingBuffer buffer(0);
  std::ostream out(&buffer);
  ASSERT_NO_THROW(writeMtl(out));
  EXPECT_FALSE(out.good());
  EXPECT_EQ(buffer.taken(), "");
}

#ifndef _WIN32
/// No file of this process grows beyond `bytes` while this lives; writing more is
/// refused with an error, as on a full disk, and not with a signal.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(std::size_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before_), 0);
    const rlimit limit{bytes, before_.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  }
  ~FileSizeLimit() {
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &before_), 0);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int);
};

class WriteFaultsOnDisk : public testing::Test {
 protected:
  WriteFaultsOnDisk() {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    folder_ = fs::temp_directory_path() / (std::string("qelm-write-faults-") + test->name());
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    system_.vertices = std::make_shared<const std::vector<double>>(example_.mesh.vertices);
    system_.triangles = std::make_shared<const std::vector<std::int32_t>>(example_.mesh.triangles);
    std::ostringstream obj, mtl;
    plainObj(obj, system_, example_.field, base());
    plainMtl(mtl);
    obj_ = obj.str();
    mtl_ = mtl.str();
  }
  ~WriteFaultsOnDisk() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  std::string base() const { return (folder_ / "mesh").string(); }
  std::string bytesOf(const char* extension) const {
    std::ifstream in(base() + extension, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }
  void write() const { wobj(&system_, example_.field.data(), base().c_str()); }
  /// What the export says; where files may not grow, nothing could be captured.
  std::string messageOfWriting() const {
    testing::internal::CaptureStderr();
    write();
    return testing::internal::GetCapturedStderr();
  }

  Example example_;
  MeshSystem system_;
  fs::path folder_;
  std::string obj_, mtl_;
};

TEST_F(WriteFaultsOnDisk, AtAnyLengthOfTheFileLeaveThePartThatFits) {
  // Every length for the small file, and steps through the large one.
  std::vector<std::size_t> limits;
  for (std::size_t limit = 0; limit <= mtl_.size(); ++limit) limits.push_back(limit);
  for (std::size_t limit = mtl_.size(); limit < obj_.size() + 9000; limit += 4999) {
    limits.push_back(limit);
  }
  for (const std::size_t limit : limits) {
    SCOPED_TRACE(limit);
    {
      const FileSizeLimit full(limit);
      ASSERT_NO_THROW(write());
    }
    EXPECT_EQ(bytesOf(".obj"), obj_.substr(0, limit));
    EXPECT_EQ(bytesOf(".mtl"), mtl_.substr(0, limit)) << "is written all the same";
  }
}

TEST_F(WriteFaultsOnDisk, OfBothFilesOnAFullDeviceAreNotReported) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
  fs::create_symlink("/dev/full", base() + ".obj");
  fs::create_symlink("/dev/full", base() + ".mtl");
  EXPECT_EQ(messageOfWriting(), "");
  EXPECT_TRUE(fs::is_symlink(base() + ".obj"));
  EXPECT_TRUE(fs::is_symlink(base() + ".mtl"));
  EXPECT_EQ(std::count_if(fs::directory_iterator(folder_), fs::directory_iterator(),
                          [](const auto&) { return true; }),
            2)
      << "and nothing else appears";
}

TEST_F(WriteFaultsOnDisk, InAFolderThatCannotBeWrittenToAreReportedOnce) {
  std::string message;
  {
    const NoPermission noPermission(folder_.string());
    message = messageOfWriting();
  }
  EXPECT_EQ(message, "couldn't open file " + base() + " for writing.\n");
  fs::permissions(folder_, fs::perms::owner_all);
  EXPECT_TRUE(fs::is_empty(folder_));
}
#endif

}  // namespace
}  // namespace qelm::test
