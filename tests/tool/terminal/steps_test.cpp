// The line that shows progress is another thread's; the thread sanitizer watches it here.
#include "terminal/steps.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>
#include <thread>

#include "terminal/console.h"

namespace qelm::tool {
namespace {

using namespace std::chrono_literals;

/// While it lives, the standard error stream is a terminal.
class Terminal {
 public:
  Terminal() : ours_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)), before_(dup(STDERR_FILENO)) {
    EXPECT_EQ(grantpt(ours_), 0);
    EXPECT_EQ(unlockpt(ours_), 0);
    theirs_ = open(ptsname(ours_), O_RDWR | O_NOCTTY);
    dup2(theirs_, STDERR_FILENO);
    setenv("TERM", "xterm", 1);
  }
  ~Terminal() {
    dup2(before_, STDERR_FILENO);
    for (const int descriptor : {before_, theirs_, ours_}) close(descriptor);
  }

  /// What is written to it until that has a certain part, or for twenty seconds.
  std::string shownUntil(const std::string& part) const {
    std::string text;
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (text.find(part) == std::string::npos && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(5ms);
      text += shown();
    }
    return text;
  }

  /// What was written to it since the last time.
  std::string shown() const {
    std::string text;
    std::array<char, 4096> part;
    for (ssize_t count; (count = read(ours_, part.data(), part.size())) > 0;)
      text.append(part.data(), static_cast<std::size_t>(count));
    return text;
  }

 private:
  int ours_, before_, theirs_ = -1;
};

bool has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(Steps, LongOnesShowALineThatMessagesTakeThePlaceOf) {
  const Terminal terminal;
  const Console console;
  Steps steps(console);
  const int result = steps.run("cut", [&] {
    EXPECT_TRUE(has(terminal.shownUntil("\rcut          0."), "\rcut          0."));
    console.line("meanwhile");
    EXPECT_TRUE(has(terminal.shownUntil("meanwhile"), " \rmeanwhile"));
    terminal.shownUntil("\rcut ");
    return 7;
  });
  EXPECT_EQ(result, 7);
  const std::string after = terminal.shown();
  ASSERT_FALSE(after.empty());
  EXPECT_EQ(after.substr(after.size() - 2), " \r") << "the line stays";
  ASSERT_EQ(steps.list().size(), 1U);
  EXPECT_EQ(steps.list().front().name, "cut");
  EXPECT_GE(steps.list().front().seconds, 0.3);
}

TEST(Steps, ShowHowLongTheyAreExpectedToTake) {
  const Terminal terminal;
  const auto wait = [&] { return terminal.shownUntil(" s of about 12 s"); };
  EXPECT_TRUE(has(Steps(Console()).run("factorise", wait, 12), " s of about 12 s"));
}

TEST(Steps, QuietOnesShowNothing) {
  const Terminal terminal;
  Steps steps{Console(true)};
  steps.run("solve", [] { std::this_thread::sleep_for(400ms); });
  for (int i = 0; i < 100; ++i) steps.run("weld", [] {});
  EXPECT_EQ(steps.list().size(), 101U);
  EXPECT_EQ(terminal.shown(), "");
}

}  // namespace
}  // namespace qelm::tool
