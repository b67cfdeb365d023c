#include "files/cleanup.h"

#include <array>
#include <atomic>
#include <cstddef>

#ifndef _WIN32
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "text/index.h"
#endif

namespace qelm::tool {
namespace {

// More results than anyone asks for in one run.
constexpr std::size_t kSlots = 16;

#ifdef _WIN32
int take(const char*) { return -1; }
void give(int) {}
#else
std::array<std::atomic<const char*>, kSlots> slots = {};
static_assert(std::atomic<const char*>::is_always_lock_free, "the handler may not wait");

// The names that the tool gives to files in its temporary folders are not known here,
// so the folder is listed. readdir() is not on the list of what a handler may call; the
// only thing it could meet half done is another readdir(), and the tool calls none.
void removeFolder(const char* path) {
  DIR* const folder = opendir(path);
  if (folder == nullptr) return;
  while (const dirent* const entry = readdir(folder)) unlinkat(dirfd(folder), entry->d_name, 0);
  closedir(folder);
  rmdir(path);
}

extern "C" void onInterrupt(int signal) {
  for (const std::atomic<const char*>& slot : slots) {
    const char* const path = slot.load();
    if (path != nullptr && unlink(path) != 0) removeFolder(path);
  }
  // The default action, so that whoever started the program sees what ended it.
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void installHandlers() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before = {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_DFL) continue;  // ignored, as by nohup
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    sigaction(signal, &action, nullptr);
  }
}

int take(const char* path) {
  static const bool isInstalled = (installHandlers(), true);
  static_cast<void>(isInstalled);
  for (std::size_t k = 0; k < kSlots; ++k) {
    const char* empty = nullptr;
    if (slots[k].compare_exchange_strong(empty, path)) return asInt(k);
  }
  return -1;
}

void give(int slot) { slots[asIndex(slot)].store(nullptr); }
#endif

}  // namespace

RemovedOnInterrupt::~RemovedOnInterrupt() { release(); }

void RemovedOnInterrupt::watch(const std::filesystem::path& path) {
  release();
  path_ = path.string();
  slot_ = take(path_.c_str());
}

void RemovedOnInterrupt::release() {
  if (slot_ >= 0) give(slot_);
  slot_ = -1;
}

}  // namespace qelm::tool
