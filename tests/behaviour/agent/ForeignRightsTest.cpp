// Tests of a process that has more rights than the user who started it.

#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

#include <array>
#include <filesystem>
#include <list>
#include <optional>
#include <string>

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane::test;

static constexpr int hasThem = 0;
static constexpr int lacksThem = 3;

// A group other than the process's own that the process may give to a file.
static std::optional<gid_t> otherGroup() {
  constexpr gid_t daemons = 1;
  if (geteuid() == 0)
    return daemons;
  std::array<gid_t, 64> groups{};
  const int count = getgroups(static_cast<int>(groups.size()), groups.data());
  for (int i = 0; i < count; ++i)
    if (groups[static_cast<std::size_t>(i)] != getegid())
      return groups[static_cast<std::size_t>(i)];
  return std::nullopt;
}

static int exitCodeOf(const std::string &program) {
  std::string name = program;
  std::array<char *, 2> arguments{name.data(), nullptr};
  pid_t child = 0;
  EXPECT_EQ(posix_spawn(&child, program.c_str(), nullptr, nullptr,
                        arguments.data(), environ),
            0);
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

namespace {
struct ForeignRights : testing::Test {
  ForeignRights() { std::filesystem::copy_file(HOST_FILE, program); }

  bool wroteAnything() const {
    return folder.has("log.txt") || folder.has("results");
  }

  TempFolder folder;
  std::string program = folder.file("host");
  EnvGuard dumpLog{"CORVANE_DUMP_LOG", folder.file("log.txt")};
  EnvGuard autotune{"CORVANE_AUTOTUNE", folder.file("results")};
  EnvGuard location{"CORVANE_INSTALL_LOCATION", folder.text()};
};
} // namespace

TEST_F(ForeignRights, LeaveNoVariableThatCounts) {
  const std::optional<gid_t> group = otherGroup();
  if (!group)
    GTEST_SKIP() << "this user has one group only, so no program of another's";
  ASSERT_EQ(chown(program.c_str(), static_cast<uid_t>(-1), *group), 0);
  ASSERT_EQ(chmod(program.c_str(), 02755), 0);
  const int code = exitCodeOf(program);
  if (code == lacksThem)
    GTEST_SKIP() << "this file system gives no rights of others to programs";
  EXPECT_EQ(code, hasThem);
  EXPECT_FALSE(wroteAnything());
}

TEST_F(ForeignRights, AreNeededForThat) {
  EXPECT_EQ(exitCodeOf(program), lacksThem);
  EXPECT_TRUE(folder.has("log.txt"));
  EXPECT_TRUE(folder.has("results/autotune.csv"));
}
