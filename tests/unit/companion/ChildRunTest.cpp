// Tests of children with limits, whatever they do.

#include "companion/GeneratorRun.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using End = ChildRun::End;

static ChildRun runShell(const std::string &script,
                         const std::string &input = "",
                         const ChildLimits &limits = {}) {
  return runChild({"/bin/sh", "-c", script}, input, limits);
}

static ChildLimits patient() {
  ChildLimits limits;
  limits.time = std::chrono::minutes(5);
  return limits;
}

TEST(ChildRun, GivesInputAndReturnsOutput) {
  const ChildRun run = runShell("tr a-z A-Z", "text", patient());
  EXPECT_EQ(run.end, End::Done) << run.why;
  EXPECT_EQ(run.output, "TEXT");
}

TEST(ChildRun, TakesMoreThanAPipeHolds) {
  const std::string input(std::size_t{1} << 20, 'x');
  const ChildRun run = runShell("cat", input, patient());
  EXPECT_EQ(run.end, End::Done) << run.why;
  EXPECT_EQ(run.output, input);
}

TEST(ChildRun, NeedNotReadItsInput) {
  const ChildRun run =
      runShell("echo done", std::string(std::size_t{1} << 20, 'x'), patient());
  EXPECT_EQ(run.end, End::Done) << run.why;
  EXPECT_EQ(run.output, "done\n");
}

TEST(ChildRun, MayHaveNoInput) {
  EXPECT_EQ(runShell("cat; echo end", "", patient()).output, "end\n");
}

TEST(ChildRun, OfAProgramThatIsNotThereSaysSo) {
  const ChildRun run = runChild({"/nowhere/program"}, "", {});
  EXPECT_EQ(run.end, End::NotStarted);
  EXPECT_EQ(run.why, "cannot be started: No such file or directory");
}

TEST(ChildRun, ThatFailsSaysHow) {
  EXPECT_EQ(runShell("exit 3", "", patient()).why, "ended with status 3");
  EXPECT_EQ(runShell("kill -SEGV $$", "", patient()).why,
            "was ended by signal 11");
}

TEST(ChildRun, ThatHangsIsEnded) {
  ChildLimits limits;
  limits.time = std::chrono::milliseconds(200);
  const ChildRun run = runShell("sleep 1000", "", limits);
  EXPECT_EQ(run.end, End::TooSlow);
  EXPECT_EQ(run.why, "did not end within 0 s");
}

TEST(ChildRun, ThatHangsWithoutItsOutputIsEnded) {
  ChildLimits limits;
  limits.time = std::chrono::milliseconds(200);
  const ChildRun run = runShell("exec >&-; sleep 1000", "", limits);
  EXPECT_EQ(run.end, End::Failed);
  EXPECT_EQ(run.why, "did not end");
}

TEST(ChildRun, EndsWithAllThatTheChildHasStarted) {
  const TempFolder folder;
  const std::string pipe = folder.file("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const int reading = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  ChildLimits limits;
  limits.time = std::chrono::milliseconds(500);
  EXPECT_EQ(runShell("sleep 10000 > " + pipe + " & wait", "", limits).end,
            End::TooSlow);
  // Waits while the grandchild has the pipe open.
  fcntl(reading, F_SETFL, 0);
  char byte = 0;
  EXPECT_EQ(read(reading, &byte, 1), 0);
  close(reading);
}

TEST(ChildRun, ThatBabblesIsEnded) {
  ChildLimits limits = patient();
  limits.output = 1000;
  const ChildRun run = runShell("while :; do echo babble; done", "", limits);
  EXPECT_EQ(run.end, End::TooMuchOutput);
  EXPECT_EQ(run.why, "wrote more than 1000 bytes");
}

TEST(ChildRun, ThatWantsMuchProcessorTimeIsEnded) {
  ChildLimits limits = patient();
  limits.processorSeconds = 1;
  const ChildRun run = runShell("while :; do :; done", "", limits);
  EXPECT_EQ(run.end, End::Failed);
  EXPECT_EQ(run.why, "was ended by signal 9");
}

TEST(ChildRun, HasALimitToItsMemory) {
  // In KiB, as the shell tells it.
  EXPECT_EQ(runShell("read line; ulimit -v", "line\n", patient()).output,
            "1048576\n");
}

TEST(ChildRun, InheritsNoVariables) {
  const EnvGuard layers("OPENCL_LAYERS", "layer.so");
  const ChildRun run = runChild({"/usr/bin/env"}, "", patient());
  EXPECT_EQ(run.output, "LC_ALL=C\n");
}

TEST(ChildRun, InheritsNoDescriptors) {
  const int open = ::open("/dev/null", O_RDONLY); // without O_CLOEXEC
  ASSERT_GE(open, 0);
  // The last one is the listed folder itself.
  EXPECT_EQ(runChild({"/bin/ls", "/proc/self/fd"}, "", patient()).output,
            "0\n1\n2\n3\n");
  close(open);
}

TEST(ChildRun, InheritsNoSignalsThatAreIgnoredOrHeldBack) {
  sigset_t held;
  sigset_t before;
  sigemptyset(&held);
  sigaddset(&held, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &held, &before);
  const auto old = std::signal(SIGTERM, SIG_IGN);
  EXPECT_EQ(runShell("kill -TERM $$; echo alive", "", patient()).why,
            "was ended by signal 15");
  std::signal(SIGTERM, old);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST(ChildRun, NeedsNoStandardStreams) {
  // In a process of its own, which lacks them.
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    for (int stream : {0, 1, 2})
      close(stream);
    const ChildRun run = runShell("cat", "text", patient());
    _exit(run.end == End::Done && run.output == "text" ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST(ChildRun, IsDoneWhereTheProcessIgnoresTheEndsOfChildren) {
  const auto old = std::signal(SIGCHLD, SIG_IGN);
  const ChildRun run = runShell("cat", "text", patient());
  std::signal(SIGCHLD, old);
  EXPECT_EQ(run.end, End::Done) << run.why;
  EXPECT_EQ(run.output, "text");
}
