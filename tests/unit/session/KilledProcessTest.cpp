// A process may be killed at any moment; its log must hold whole lines.

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

// The system may stop a write where one page of the file ends and the next
// begins. No line here lies across such a border, so that nothing but our own
// way of writing can tear one.
constexpr std::size_t lineLength = 64;
constexpr std::size_t headerLength = 78;

/// A launch whose rows with the time 0.007 have \p length bytes.
LaunchRecord &launchWithRows(TestState &state, std::size_t length) {
  const std::string rest = ",,,,,,,baseline,0.007\n";
  return state.addLaunch(std::string(length - rest.size(), 'k'), 0, {}, {});
}

/// Runs \p work in a process of its own and kills it once the file is larger
/// than \p size. Returns whether that was its end.
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
    for (;;) // it may be through before it is killed
      pause();
  }));
  expectWholeLines(folder.read(".auto.csv"));
}
