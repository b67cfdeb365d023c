// How the window's thread is started, watched at the library's own calls.
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>

#include "infowindow/desktop.h"
#include "infowindow/import_hook.h"
#include "qelm.h"

namespace qelm::test {
namespace {

constexpr std::size_t kStartBlockSize = 16;

decltype(&CreateThread) realCreateThread = nullptr;
decltype(&std::malloc) realMalloc = nullptr;
decltype(&std::free) realFree = nullptr;
decltype(&GetMessageA) realGetMessage = nullptr;

std::atomic<int> threadsAskedFor{0};
std::atomic<void*> startBlock{nullptr};
std::atomic<bool> startBlockFreed{false};
std::atomic<HANDLE> windowThread{nullptr};

HANDLE WINAPI noThread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void* block, DWORD,
                       DWORD*) {
  ++threadsAskedFor;
  startBlock = block;
  return nullptr;
}

/// The switch is set after doPoshModal() has looked and before the thread does.
HANDLE WINAPI suppressedThread(SECURITY_ATTRIBUTES* security, SIZE_T stack,
                               LPTHREAD_START_ROUTINE entry, void* block, DWORD flags, DWORD* id) {
  ++threadsAskedFor;
  SetEnvironmentVariableA("BLOCK_FILEIO", "1");
  const HANDLE thread = realCreateThread(security, stack, entry, block, flags, id);
  HANDLE kept = nullptr;
  DuplicateHandle(GetCurrentProcess(), thread, GetCurrentProcess(), &kept, SYNCHRONIZE, FALSE, 0);
  windowThread = kept;
  return thread;
}

void* noStartBlock(std::size_t size) {
  return size == kStartBlockSize ? nullptr : realMalloc(size);
}

void notingFree(void* block) {
  if (block != nullptr && block == startBlock) startBlockFreed = true;
  realFree(block);
}

TEST(NoThread, ReturnsZeroAndKeepsTheStartBlockOnPurpose) {
  hookImport("CreateThread", noThread, realCreateThread);
  hookImport("free", notingFree, realFree);
  const HBITMAP logo = makeLogo();
  const auto owner = reinterpret_cast<HWND>(0x1234);
  EXPECT_EQ(doPoshModal(logo, owner), 0);
  ASSERT_NE(startBlock, nullptr);
  EXPECT_FALSE(startBlockFreed);
  void* const* block = static_cast<void**>(startBlock.load());
  EXPECT_EQ(block[0], logo);
  EXPECT_EQ(block[1], owner);
  EXPECT_EQ(getPoshHandle(), nullptr);
}

TEST(Procedure, IsSetOnceMoreAfterTheWindowIsMadeOnPurpose) {
  registerFullClass(Procedure::defaultOne);
  const HWND window = openWindow();
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(SendMessageW(window, WM_NCHITTEST, 0, MAKELPARAM(700, 500)), HTCAPTION);
}

TEST(NoMemory, ReturnsTwoAndAsksForNoThread) {
  hookImport("malloc", noStartBlock, realMalloc);
  hookImport("CreateThread", noThread, realCreateThread);
  EXPECT_EQ(doPoshModal(makeLogo(), nullptr), 2);
  EXPECT_EQ(threadsAskedFor, 0);
}

TEST(Suppressed, AsksForNoThread) {
  hookImport("CreateThread", noThread, realCreateThread);
  SetEnvironmentVariableA("BLOCK_FILEIO", "1");
  EXPECT_EQ(doPoshModal(makeLogo(), nullptr), 3);
  EXPECT_EQ(threadsAskedFor, 0);
}

TEST(Suppressed, IsLookedAtAgainByTheWindowsThread) {
  registerFullClass(Procedure::defaultOne);
  hookImport("CreateThread", suppressedThread, realCreateThread);
  EXPECT_EQ(doPoshModal(makeLogo(), nullptr), 1);
  ASSERT_NE(windowThread, nullptr);
  EXPECT_EQ(WaitForSingleObject(windowThread, 5000), WAIT_OBJECT_0) << "the thread ends";
  EXPECT_FALSE(shortClassIsRegistered());
  EXPECT_EQ(findWindow(), nullptr);
}

std::atomic<void*> heldAtFirst{nullptr};
std::atomic<void*> heldAfterwards{nullptr};

/// Before the first message: the handle is held, nothing has been painted. Then the
/// close box gets a message that means nothing to it.
BOOL WINAPI pokeTheCloseBoxFirst(MSG* message, HWND window, UINT first, UINT last) {
  static const bool once = [] {
    heldAtFirst = getPoshHandle();
    SendMessageW(childrenOf(findWindow())[0], WM_NULL, 0, 0);
    heldAfterwards = getPoshHandle();
    return true;
  }();
  (void)once;
  return realGetMessage(message, window, first, last);
}

TEST(CloseBox, EmptiesTheHandleOnEveryMessageOnPurpose) {
  registerFullClass(Procedure::ownOne);
  heldAfterwards = &heldAfterwards;
  hookImport("GetMessageA", pokeTheCloseBoxFirst, realGetMessage);
  const HWND window = openWindow();
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(heldAtFirst, window);
  EXPECT_EQ(heldAfterwards, nullptr);
}

}  // namespace
}  // namespace qelm::test
