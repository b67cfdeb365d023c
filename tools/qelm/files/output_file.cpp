#include "files/output_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#endif

#include "files/paths.h"
#include "text/error.h"

namespace qelm::tool {
namespace fs = std::filesystem;
namespace {

// "x": fails when there is such a file already.
std::FILE* openBinary(const fs::path& path, bool mustBeNew) {
#ifdef _WIN32
  const int flags = _O_WRONLY | _O_BINARY | _O_CREAT | (mustBeNew ? _O_EXCL : _O_TRUNC);
  const int descriptor = _wopen(path.c_str(), flags, _S_IREAD | _S_IWRITE);
  return descriptor < 0 ? nullptr : _fdopen(descriptor, "wb");
#else
  return std::fopen(path.c_str(), mustBeNew ? "wbx" : "wb");
#endif
}

std::FILE* binaryStandardOutput() {
#ifdef _WIN32
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  return stdout;
}

}  // namespace

OutputFile::OutputFile(const std::string& target, const InputNames& inputs) : name_(target) {
  if (target == "-") {
    name_ = "standard output";
    file_ = binaryStandardOutput();
    return;
  }
  target_ = toPath(target);
  refuseToOverwrite(inputs, target_);
  std::error_code error;
  // A link stays a link; what it points at is replaced.
  if (fs::is_symlink(target_, error)) {
    const fs::path resolved = fs::weakly_canonical(target_, error);
    if (!error) target_ = resolved;
  }
  const fs::file_status status = fs::status(target_, error);
  if (fs::is_directory(status))
    throw OutputError(fmt::format("{}: cannot be written: it is a folder; name a file", name_));
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    file_ = openBinary(target_, false);
    if (file_ == nullptr) fail("cannot be written");
    return;
  }
  openTemporary();
}

void OutputFile::openTemporary() {
  constexpr int kAttempts = 100;
  int code = EEXIST;
  for (int k = 0; k < kAttempts && file_ == nullptr && code == EEXIST; ++k) {
    temporary_ = target_;
    temporary_ += fmt::format(".{}-{}.part", processNumber(), k);
    std::error_code ignored;
    if (fs::exists(temporary_, ignored)) continue;
    // Before it is there: an interrupt between the two would leave it behind.
    removal_.watch(fs::absolute(temporary_));
    errno = 0;
    file_ = openBinary(temporary_, true);
    code = errno;
  }
  if (file_ == nullptr) {
    removal_.release();
    temporary_.clear();
    errno = code;
    fail("cannot be written");
  }
  // The permissions of a file that is replaced stay as they were.
  std::error_code ignored;
  if (fs::exists(target_, ignored))
    fs::permissions(temporary_, fs::status(target_, ignored).permissions(), ignored);
}

OutputFile::~OutputFile() {
  if (file_ != nullptr && file_ != stdout) std::fclose(file_);
  std::error_code ignored;
  if (!temporary_.empty()) fs::remove(temporary_, ignored);
}

void OutputFile::fail(const char* what) const {
  const int code = errno;
  std::string advice;
  if (code == ENOENT) advice = "; is its folder there?";
  throw OutputError(fmt::format("{}: {}: {}{}", name_, what, std::strerror(code), advice));
}

void OutputFile::write(std::string_view bytes) {
  errno = 0;
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) fail("writing failed");
}

void OutputFile::finish() {
  if (file_ == nullptr) return;
  errno = 0;
  std::FILE* const file = file_;
  if (std::fflush(file) != 0) fail("writing failed");
  file_ = nullptr;
  if (file != stdout && std::fclose(file) != 0) fail("writing failed");
}

void OutputFile::commit() {
  finish();
  if (temporary_.empty()) return;
  std::error_code error;
  fs::rename(temporary_, target_, error);
  if (error) throw OutputError(fmt::format("{}: cannot be replaced: {}", name_, error.message()));
  temporary_.clear();
  removal_.release();
}

void commitTogether(const std::vector<OutputFile*>& files) {
  for (OutputFile* file : files) file->finish();
  for (OutputFile* file : files) file->commit();
}

void printData(std::string_view text) {
  OutputFile file("-", {});
  file.write(text);
  file.commit();
}

}  // namespace qelm::tool
