// The report of one log, byte for byte the same on every system.
//
// kept/log.csv comes from a real run, with a few odd rows added at its end; the
// other files were written by the Linux library. To write them anew, and then
// to look at what changed:
//   CORVANE_KEEP_REPORT=1
//   build/release/tests/behaviour/report/report_bytes_tests

#include "tests/support/FakeRuntime.h"
#include "tests/support/LoadedAgent.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

using namespace corvane::test;
using testing::SizeIs;

using Files = std::map<std::string, std::string>;

static const std::filesystem::path kept = KEPT_REPORT;

// All files in a folder and its folders but the logs, by their path from there.
static Files filesIn(const std::filesystem::path &folder) {
  Files files;
  for (const auto &entry :
       std::filesystem::recursive_directory_iterator(folder)) {
    const std::filesystem::path path = entry.path().lexically_relative(folder);
    if (entry.is_regular_file() && path != "log.csv" && path != ".auto.csv")
      files[path.generic_string()] = readBytes(entry.path());
  }
  return files;
}

static void keep(const Files &files) {
  for (const auto &[name, bytes] : files)
    ASSERT_TRUE(writeBytes(kept / name, bytes)) << name;
}

static Files reportOfLog(const std::string &log) {
  TempFolder folder;
  FakeRuntime runtime;
  LoadedAgent agent(runtime,
                    {{"CORVANE_AUTOTUNE", folder.text()},
                     {"CORVANE_INSTALL_LOCATION", "\"C:\\tools\\x\""}});
  EXPECT_TRUE(folder.write(".auto.csv", log));
  agent.unload();
  return filesIn(folder.path());
}

TEST(Report, HasTheSameBytesOnEverySystem) {
  const Files written = reportOfLog(readBytes(kept / "log.csv"));
  if (std::getenv("CORVANE_KEEP_REPORT"))
    keep(written);

  const Files expected = filesIn(kept);
  EXPECT_THAT(expected, SizeIs(3 + 3 * 4)) << "files are missing in " << kept;
  EXPECT_THAT(written, SizeIs(expected.size()));
  for (const auto &[name, bytes] : expected) {
    ASSERT_EQ(written.count(name), 1U) << name;
    EXPECT_EQ(written.at(name), bytes) << name;
  }
}
