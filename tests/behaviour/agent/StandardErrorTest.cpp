// Tests of standard error streams that take no bytes, or whose number is that
// of another file, on Posix systems.

#include "tests/behaviour/Calls.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <iostream>
#include <streambuf>
#include <string>

#include <fcntl.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

static constexpr const char *report =
    "QrlAgent:: 148: CL Error: CL_INVALID_PROGRAM\n";

namespace {
/// An agent that a test has report a failure. For a child process, whose
/// standard error is spoilt afterwards.
struct Reporting {
  Reporting() { runtime.answer("clReleaseProgram", CL_INVALID_PROGRAM); }
  void failOnce() const {
    EXPECT_EQ(agent.table().clReleaseProgram(nullptr), CL_INVALID_PROGRAM);
  }
  FakeRuntime runtime;
  LoadedAgent agent{runtime};
};

/// A pipe whose end for writing is standard error.
struct ErrorPipe {
  explicit ErrorPipe(int flags = 0) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    read = ends[0];
    EXPECT_EQ(dup2(ends[1], STDERR_FILENO), STDERR_FILENO);
    close(ends[1]);
    fcntl(STDERR_FILENO, F_SETFL, flags);
  }

  /// Writes until not one more byte fits.
  static void fill() {
    const int flags = fcntl(STDERR_FILENO, F_GETFL);
    fcntl(STDERR_FILENO, F_SETFL, flags | O_NONBLOCK);
    const std::string block(4096, '.');
    while (write(STDERR_FILENO, block.data(), block.size()) > 0) {
    }
    while (write(STDERR_FILENO, ".", 1) > 0) {
    }
    fcntl(STDERR_FILENO, F_SETFL, flags);
  }
  /// All that was written besides the bytes of fill().
  std::string take() const {
    fcntl(read, F_SETFL, O_NONBLOCK);
    std::string all;
    std::array<char, 4096> block{};
    for (;;) {
      const ssize_t count = ::read(read, block.data(), block.size());
      if (count <= 0)
        break;
      all.append(block.data(), static_cast<std::size_t>(count));
    }
    const std::size_t first = all.find_first_not_of('.');
    return first == std::string::npos ? "" : all.substr(first);
  }

  int read;
};
} // namespace

// Opens the file. It gets the lowest free number, which has to be that of
// standard error.
static void openAsStandardError(const std::string &path) {
  close(STDERR_FILENO);
  EXPECT_EQ(open(path.c_str(), O_RDWR | O_CREAT, 0600), STDERR_FILENO);
}

TEST(StandardError, WhoseNumberIsAFileOfTheHostsByNowGetsNothing) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    const Reporting host;
    openAsStandardError(log + ".data");
    host.failOnce();
  });
  EXPECT_EQ(ended.files.at("log.txt.data"), "");
}

// A daemon has the null device in several places.
TEST(StandardError, ThatTheHostHadTwiceGetsNothingUnderAnotherFilesNumber) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    openAsStandardError(log + ".errors");
    const int second = dup(STDERR_FILENO);
    const Reporting host;
    openAsStandardError(log + ".data");
    host.failOnce();
    close(second);
  });
  EXPECT_EQ(ended.files.at("log.txt.data"), "");
}

TEST(StandardError, ThatIsTheNullDeviceIsNeverTakenForOneThatIsKept) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    openAsStandardError("/dev/null");
    const Reporting host;
    const int second = open("/dev/null", O_RDWR);
    openAsStandardError(log + ".data");
    host.failOnce();
    close(second);
  });
  EXPECT_EQ(ended.files.at("log.txt.data"), "");
}

TEST(StandardError, ThatWasClosedAtTheLoadGetsNothingLater) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    close(STDERR_FILENO);
    const Reporting host;
    openAsStandardError(log + ".data");
    host.failOnce();
  });
  EXPECT_EQ(ended.files.at("log.txt.data"), "");
}

// At the end the agent writes the length of the diagnostic log to standard
// error.
TEST(StandardError, WhoseNumberIsAFileOfTheHostsByNowGetsNothingAtTheEnd) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    FakeRuntime runtime;
    assignForGood("CORVANE_DUMP_LOG", log.c_str());
    { const LoadedAgent agent(runtime, {{"CORVANE_DUMP_LOG", log}}); }
    openAsStandardError(log + ".data");
  });
  EXPECT_EQ(ended.diagnosticLog, "Frontend loaded\n");
  EXPECT_EQ(ended.files.at("log.txt.data"), "");
}

TEST(StandardError, ThatIsRedirectedForATimeGetsReports) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    const Reporting host;
    const int kept = dup(STDERR_FILENO);
    const int file = open((log + ".kept").c_str(), O_WRONLY | O_CREAT, 0600);
    dup2(file, STDERR_FILENO);
    host.failOnce();
    dup2(kept, STDERR_FILENO);
    host.failOnce();
  });
  EXPECT_EQ(ended.files.at("log.txt.kept"), report);
  EXPECT_EQ(ended.errorText, report);
}

TEST(StandardError, WhoseReaderIsGoneDoesNotEndTheProcess) {
  runToItsEnd([](const std::string &) {
    std::signal(SIGPIPE, SIG_DFL);
    const ErrorPipe errors;
    const Reporting host;
    host.failOnce();
    close(errors.read);
    host.failOnce();
  });
}

TEST(StandardError, OfAFullPipeThatDoesNotBlockLosesLines) {
  runToItsEnd([](const std::string &) {
    const ErrorPipe errors(O_NONBLOCK);
    const Reporting host;
    ErrorPipe::fill();
    host.failOnce();
    EXPECT_EQ(errors.take(), "");
    host.failOnce();
    EXPECT_EQ(errors.take(), report);
  });
}

TEST(StandardError, OfAFullPipeThatBlocksLosesLinesInTheEnd) {
  runToItsEnd([](const std::string &) {
    const ErrorPipe errors;
    const Reporting host;
    ErrorPipe::fill();
    host.failOnce();
    host.failOnce();
    EXPECT_EQ(errors.take(), "");
    host.failOnce();
    EXPECT_EQ(errors.take(), report);
  });
}

TEST(StandardError, ThatCannotBeWrittenAndThrowsDoesNotStopTheEnd) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    FakeRuntime runtime;
    assignForGood("CORVANE_DUMP_LOG", log.c_str());
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(dup2(full, STDERR_FILENO), STDERR_FILENO);
    std::cerr.exceptions(std::ios::badbit | std::ios::failbit);
    const LoadedAgent agent(runtime, {{"CORVANE_DUMP_LOG", log}});
  });
  EXPECT_EQ(ended.diagnosticLog, "Frontend loaded\n");
}

namespace {
/// A stream buffer of the application's that takes nothing.
struct ThrowingBuffer : std::streambuf {
  int_type overflow(int_type /*character*/) override { throw 1; }
  std::streamsize xsputn(const char * /*text*/,
                         std::streamsize /*count*/) override {
    throw 1;
  }
};
} // namespace

TEST(StandardError, WhoseBufferThrowsAnythingDoesNotStopTheEnd) {
  const Ended ended = runToItsEnd([](const std::string &log) {
    FakeRuntime runtime;
    assignForGood("CORVANE_DUMP_LOG", log.c_str());
    static ThrowingBuffer buffer;
    std::cerr.rdbuf(&buffer);
    std::cerr.exceptions(std::ios::badbit);
    const LoadedAgent agent(runtime, {{"CORVANE_DUMP_LOG", log}});
  });
  EXPECT_EQ(ended.diagnosticLog, "Frontend loaded\n");
}
