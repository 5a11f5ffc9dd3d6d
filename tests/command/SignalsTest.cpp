// Tests of signals to corvane and its program, and of the messages about
// loaders.

#include "tests/command/Corvane.h"

#include <csignal>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane::test;
using testing::HasSubstr;
using testing::StartsWith;

namespace {
class Signals : public CorvaneTest {
protected:
  /// Starts corvane with the application, whose output goes to \p pipe.
  pid_t start(const char *command, int pipe) const {
    const std::string corvaneOption =
        std::string(command) == "tune" ? "--output" : "--profile";
    const pid_t child = ::fork();
    if (child != 0)
      return child;
    ::dup2(pipe, STDOUT_FILENO);
    ::execl(CORVANE_FILE, CORVANE_FILE, command, corvaneOption.c_str(),
            output().c_str(), "--", APPLICATION_FILE, "record", "a",
            folder.file("r").c_str(), "await", nullptr);
    ::_exit(99);
  }

  /// Sends \p signal once the application waits for it; returns how corvane
  /// ended.
  int statusAfter(int signal) const {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = start("tune", ends[1]);
    ::close(ends[1]);
    char character = 0;
    while (::read(ends[0], &character, 1) == 1 && character != '\n') {
    }
    ::kill(child, signal);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    ::close(ends[0]);
    return status;
  }
};
} // namespace

TEST_F(Signals, OfTheProgramBecomeTheExitCode) {
  const std::string file = recordFile("r", fasterVariant());
  EXPECT_EQ(tuned({"record", "a", file, "raise", "9"}).exitCode, 128 + 9);
  EXPECT_THAT(profile(), HasSubstr("\"use\":\"g0S4\""));
}

TEST_F(Signals, ReachTheProgramAndTheProfileIsMade) {
  recordFile("r", fasterVariant());
  const int status = statusAfter(SIGTERM);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 7); // by the program's own handler
  EXPECT_THAT(profile(), HasSubstr("\"use\":\"g0S4\""));
}

TEST_F(Signals, EndAProgramThatHasNoHandler) {
  recordFile("r", fasterVariant());
  const int status = statusAfter(SIGINT);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 128 + SIGINT);
  EXPECT_THAT(profile(), HasSubstr("\"use\":\"g0S4\""));
}

TEST_F(Signals, OfLimitsAndTheTerminalsEndReachTheProgram) {
  recordFile("r", fasterVariant());
  for (const int signal : {SIGHUP, SIGALRM, SIGXCPU}) {
    std::filesystem::remove_all(output());
    const int status = statusAfter(signal);
    ASSERT_TRUE(WIFEXITED(status)) << signal;
    EXPECT_EQ(WEXITSTATUS(status), 128 + signal);
  }
}

// LLVM would end a process that has lost a line.
TEST_F(Signals, AreNotSentWhereStandardErrorCannotBeWritten) {
  const std::string file = recordFile("r", fasterVariant());
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(::open("/dev/full", O_WRONLY), STDERR_FILENO);
    ::execl(CORVANE_FILE, CORVANE_FILE, "tune", "--output", output().c_str(),
            "--", APPLICATION_FILE, "record", "a", file.c_str(), "exit", "7",
            nullptr);
    ::_exit(99);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 7);
}

namespace {
class StartedProgram : public CorvaneTest {
protected:
  /// A file that can be executed; returns its path.
  std::string script(const std::string &text, bool executable = true) const {
    EXPECT_TRUE(folder.write("script", text));
    std::filesystem::permissions(folder.path() / "script",
                                 executable ? std::filesystem::perms(0700)
                                            : std::filesystem::perms(0600));
    return folder.file("script");
  }
};
} // namespace

TEST_F(StartedProgram, MayBeAScriptThatStartsOthers) {
  const std::string file = recordFile("r", fasterVariant());
  const std::string path =
      script("#!/bin/sh\n" APPLICATION_FILE " record a " + file + "\nexit 6\n");
  EXPECT_EQ(corvane({"tune", "--output", output(), "--", path}).exitCode, 6);
  EXPECT_THAT(profile(), HasSubstr("\"use\":\"g0S4\""));
}

TEST_F(StartedProgram, IsFoundInTheSearchPath) {
  EXPECT_EQ(corvane({"tune", "--output", output(), "--", "sh", "-c", "exit 4"})
                .exitCode,
            4);
}

TEST_F(StartedProgram, MustBeExecutable) {
  const Outcome outcome = corvane(
      {"tune", "--output", output(), "--", script("#!/bin/sh\n", false)});
  EXPECT_EQ(outcome.exitCode, 126);
  EXPECT_THAT(outcome.err, HasSubstr("script: Permission denied\n"));
}

TEST_F(StartedProgram, HasTheProcessOfRun) {
  tuned({"record", "a", recordFile("r", fasterVariant())});
  const Outcome outcome =
      runProgram({"/bin/sh", "-c",
                  "echo \\$\\$; exec " CORVANE_FILE " run --profile " +
                      output() + " -- sh -c 'echo \\$\\$'"});
  const std::size_t half = outcome.out.find('\n') + 1;
  EXPECT_EQ(outcome.out.substr(0, half), outcome.out.substr(half));
}

namespace {
class Loader : public CorvaneTest {};
} // namespace

TEST_F(Loader, ThatTakesLayersIsNotToBlame) {
  EXPECT_THAT(tuned({"say", "hello"}).err,
              HasSubstr("corvane: no kernel was launched through the layer"));
}

TEST_F(Loader, ThatTakesNoneIsNamed) {
  std::filesystem::copy_file(PLAIN_LOADER_FILE, folder.file("libOpenCL.so.1"));
  define("LD_LIBRARY_PATH", folder.text());
  EXPECT_THAT(tuned({"say", "hello"}).err,
              StartsWith("corvane: the OpenCL loader takes no layers: "));
}

TEST_F(Loader, ThatIsMissingIsNamed) {
  // The system does not look for another file once it has found one of that
  // name.
  ASSERT_TRUE(folder.write("libOpenCL.so.1", "nothing"));
  define("LD_LIBRARY_PATH", folder.text());
  EXPECT_THAT(tuned({"say", "hello"}).err,
              StartsWith("corvane: there is no OpenCL loader "));
}
