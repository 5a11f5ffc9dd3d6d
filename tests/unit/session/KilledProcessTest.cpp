// Tests that the log of a process that is killed at any moment has whole rows.

#include "TestState.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <sstream>

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

namespace {

// The system may stop a write between two pages of the file. This length
// divides the size of a page, so no line is in two pages, and only our own way
// of writing can cut one in two.
constexpr std::size_t lineLength = 64;
constexpr std::size_t headerLength = 78;

/// A launch whose rows with the time 0.007 have \p length bytes.
LaunchRecord &launchWithRows(TestState &state, std::size_t length) {
  const std::string rest = ",,,,,,,baseline,0.007\n";
  return state.addLaunch(std::string(length - rest.size(), 'k'), 0, {}, {});
}

/// Runs \p work in a child process and kills it once the file is larger than
/// \p size. Returns whether the child ended by that.
template <typename Work>
bool killWhenLarger(const std::string &path, std::uintmax_t size, Work work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(0);
  }
  int status = 0;
  std::error_code missing;
  std::uintmax_t now = 0;
  while (now <= size) {
    if (waitpid(child, &status, WNOHANG) != 0)
      return false;
    sched_yield();
    now = std::filesystem::file_size(path, missing);
    if (missing)
      now = 0;
  }
  kill(child, SIGKILL);
  return waitpid(child, &status, 0) == child && WIFSIGNALED(status);
}

void expectWholeLines(const std::string &log) {
  ASSERT_FALSE(log.empty());
  EXPECT_EQ(log.back(), '\n');
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);)
    ASSERT_EQ(std::count(line.begin(), line.end(), ','), 8) << line;
}

} // namespace

TEST(KilledProcess, LeavesWholeLinesWhileAppending) {
  TempFolder folder;
  EnvGuard directory("CORVANE_AUTOTUNE", folder.text());
  TestState state;
  ASSERT_TRUE(folder.write(
      ".auto.csv", ",,,,,,,," + std::string(lineLength - 9, '#') + "\n"));
  LaunchRecord &launch = launchWithRows(state, lineLength);
  // A single kill would seldom hit the short time of a write.
  for (std::uintmax_t size = 2'000; size != 120'000; size += 2'000) {
    ASSERT_TRUE(killWhenLarger(folder.file(".auto.csv"), size, [&] {
      for (;;)
        state.complete(launch, "", 7);
    }));
    expectWholeLines(folder.read(".auto.csv"));
  }
}

TEST(KilledProcess, LeavesWholeLinesWhileRewriting) {
  TempFolder folder;
  EnvGuard directory("CORVANE_AUTOTUNE", nullptr);
  TestState state;
  state.complete(launchWithRows(state, 2 * lineLength - headerLength), "", 7);
  LaunchRecord &launch = launchWithRows(state, lineLength);
  for (int i = 0; i != 50'000; ++i)
    state.complete(launch, "", 7);
  directory.set(folder.text());
  ASSERT_TRUE(killWhenLarger(folder.file(".auto.csv"), 200'000, [&] {
    state.complete(launch, "", 7);
    for (;;) // the child must not be done before it is killed
      pause();
  }));
  expectWholeLines(folder.read(".auto.csv"));
}
