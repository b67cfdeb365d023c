#include "files/mapped_pages.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstddef>
#include <cstdint>

namespace qelm::tool {
namespace {

// Copying a smaller file takes less time than anyone notices.
constexpr off_t kLeastMapped = 1 << 18;

// The one file that is mapped, for the signal's handler, which can have no arguments.
std::atomic<bool> isMapping = false;
std::atomic<std::uintptr_t> mappedBegin = 0;
std::atomic<std::uintptr_t> mappedEnd = 0;
std::atomic<bool> isCutShort = false;
static_assert(std::atomic<std::uintptr_t>::is_always_lock_free, "the handler may not wait");

/// Puts zeros in the place of the page that is missing and of all behind it. What reads goes on.
extern "C" void onMissingPage(int signal, siginfo_t* info, void*) {
  const auto address = reinterpret_cast<std::uintptr_t>(info->si_addr);
  const auto page = address - address % static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const bool isOurs = address >= mappedBegin.load() && address < mappedEnd.load();
  if (isOurs) isCutShort = true;
  if (!isOurs || mmap(reinterpret_cast<void*>(page), mappedEnd.load() - page, PROT_READ,
                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) == MAP_FAILED)
    std::signal(signal, SIG_DFL);  // happens again, and ends the program
}

void installHandler() {
  struct sigaction action = {};
  action.sa_sigaction = onMissingPage;
  action.sa_flags = SA_SIGINFO;
  sigaction(SIGBUS, &action, nullptr);
}

std::span<const char> mapFile(int file) {
  struct stat status = {};
  if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < kLeastMapped)
    return {};
  const auto size = static_cast<std::size_t>(status.st_size);
  // All pages are asked for at once: one by one they would cost more.
  void* const pages = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file, 0);
  if (pages == MAP_FAILED) return {};
  mappedBegin = reinterpret_cast<std::uintptr_t>(pages);
  mappedEnd = mappedBegin + size;
  return {static_cast<const char*>(pages), size};
}

}  // namespace

std::span<const char> mapPages(const char* path) {
  if (isMapping.exchange(true)) return {};
  static const bool isInstalled = (installHandler(), true);
  static_cast<void>(isInstalled);
  isCutShort = false;
  std::span<const char> pages;
  if (const int file = open(path, O_RDONLY | O_CLOEXEC); file >= 0) {
    pages = mapFile(file);
    close(file);
  }
  if (pages.empty()) isMapping = false;
  return pages;
}

bool arePagesMissing() { return isCutShort; }

void unmapPages(std::span<const char> pages) {
  mappedBegin = mappedEnd = 0;
  munmap(const_cast<char*>(pages.data()), pages.size());
  isMapping = false;
}

}  // namespace qelm::tool
#endif
