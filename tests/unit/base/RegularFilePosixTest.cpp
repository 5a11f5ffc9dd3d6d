// Tests of links, pipes and devices under the name of a result file, on Posix
// systems.

#include "base/Platform.h"
#include "base/RegularFile.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using platform::FileUse;
using platform::OpenedFile;
using platform::openRegularFile;

namespace {
struct UnfitPath : testing::TestWithParam<FileUse> {
  OpenedFile open(const std::string &path) const {
    return openRegularFile(path, GetParam());
  }
  TempFolder folder;
};
} // namespace

TEST_P(UnfitPath, IsALinkWhoseTargetStaysAsItIs) {
  folder.write("target", "precious");
  std::filesystem::create_symlink("target", folder.path() / "link");
  EXPECT_TRUE(open(folder.file("link")).refused);
  EXPECT_EQ(folder.read("target"), "precious");
}

TEST_P(UnfitPath, IsALinkWhoseMissingTargetIsNotMade) {
  std::filesystem::create_symlink("target", folder.path() / "link");
  EXPECT_TRUE(open(folder.file("link")).refused);
  EXPECT_FALSE(folder.has("target"));
}

// A blocking call would wait for ever for the other end of the pipe to be
// opened.
TEST_P(UnfitPath, IsAPipeWithoutAPartner) {
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  EXPECT_TRUE(open(folder.file("pipe")).refused);
}

TEST_P(UnfitPath, IsAPipeWithAPartner) {
  const std::string path = folder.file("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const int partner = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_GE(partner, 0);
  EXPECT_TRUE(open(path).refused);
  close(partner);
}

TEST_P(UnfitPath, IsADevice) {
  EXPECT_TRUE(open("/dev/zero").refused);
  EXPECT_TRUE(open("/dev/full").refused);
}

TEST_P(UnfitPath, IsASocket) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  const std::string path = folder.file("socket");
  ASSERT_LT(path.copy(address.sun_path, sizeof address.sun_path - 1),
            sizeof address.sun_path - 1);
  const int listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(listening, reinterpret_cast<const sockaddr *>(&address),
                 sizeof address),
            0);
  EXPECT_TRUE(open(path).refused);
  close(listening);
}

TEST_P(UnfitPath, IsNoneOfAFileInALinkedFolder) {
  std::filesystem::create_directory(folder.path() / "real");
  std::filesystem::create_directory_symlink("real", folder.path() / "linked");
  folder.write("real/file", "text");
  const OpenedFile opened = open(folder.file("linked/file"));
  EXPECT_TRUE(opened.file);
  EXPECT_FALSE(opened.refused);
}

static std::string nameOf(const testing::TestParamInfo<FileUse> &use) {
  switch (use.param) {
  case FileUse::Read:
    return "Reading";
  case FileUse::Replace:
    return "Replacing";
  case FileUse::Append:
    return "Appending";
  case FileUse::AddOnly:
    return "Adding";
  }
  return "";
}

INSTANTIATE_TEST_SUITE_P(For, UnfitPath,
                         testing::Values(FileUse::Read, FileUse::Replace,
                                         FileUse::Append, FileUse::AddOnly),
                         nameOf);

TEST(RegularFileOfPosix, IsNotInheritedByOtherPrograms) {
  const TempFolder folder;
  const OpenedFile opened =
      openRegularFile(folder.file("file"), FileUse::Replace);
  ASSERT_TRUE(opened.file);
  EXPECT_NE(fcntl(fileno(opened.file.get()), F_GETFD) & FD_CLOEXEC, 0);
}

// In a child process, because the standard streams of this one are needed.
TEST(RegularFileOfPosix, NeverTakesTheNumberOfAClosedStandardStream) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const TempFolder folder;
        close(STDIN_FILENO);
        close(STDERR_FILENO);
        const OpenedFile opened =
            openRegularFile(folder.file("file"), FileUse::Append);
        std::exit(opened.file && fileno(opened.file.get()) > STDERR_FILENO
                      ? EXIT_SUCCESS
                      : EXIT_FAILURE);
      },
      testing::ExitedWithCode(EXIT_SUCCESS), "");
}

namespace {
/// Keeps files of this process from growing beyond some bytes; a write that
/// would raises a signal.
class FileSizeLimit {
public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{bytes, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before); }
  FileSizeLimit(const FileSizeLimit &) = delete;
  FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
  rlimit before{};
};
} // namespace

TEST(RegularFileOfPosix, BeyondTheLimitForFilesOnlyTakesLess) {
  const TempFolder folder;
  const OpenedFile opened =
      openRegularFile(folder.file("file"), FileUse::Replace);
  ASSERT_TRUE(opened.file);
  const FileSizeLimit limit(3);
  EXPECT_EQ(platform::writeBytes(opened.file.get(), "abcdef", 6), 3U);
  EXPECT_EQ(platform::writeBytes(opened.file.get(), "d", 1), 0U);
  EXPECT_EQ(folder.read("file"), "abc");
}

static volatile std::sig_atomic_t signalsSeen = 0;
static void countSignal(int) { signalsSeen = signalsSeen + 1; }

TEST(RegularFileOfPosix, LeavesASignalAloneThatAnotherHasSent) {
  const TempFolder folder;
  const OpenedFile opened =
      openRegularFile(folder.file("file"), FileUse::Replace);
  ASSERT_TRUE(opened.file);
  const auto before = std::signal(SIGXFSZ, countSignal);
  sigset_t blocked;
  sigset_t mask;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGXFSZ);
  pthread_sigmask(SIG_BLOCK, &blocked, &mask);
  std::raise(SIGXFSZ);
  {
    const FileSizeLimit limit(0);
    EXPECT_EQ(platform::writeBytes(opened.file.get(), "d", 1), 0U);
  }
  EXPECT_EQ(signalsSeen, 0);
  pthread_sigmask(SIG_SETMASK, &mask, nullptr);
  EXPECT_EQ(signalsSeen, 1);
  std::signal(SIGXFSZ, before);
}

TEST(RegularFileOfPosix, IsNotReadThroughALinkOrFromAPipe) {
  const TempFolder folder;
  folder.write("target", "text");
  std::filesystem::create_symlink("target", folder.path() / "link");
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  for (const char *name : {"link", "pipe"})
    EXPECT_EQ(llvm::toString(readRegularFile(folder.file(name), 9).takeError()),
              "it is no regular file");
}
