// Tests of the results when the output directory is disturbed while the program
// runs. Nothing is written to standard error, and the program's results stay
// right.

#include "tests/system/autotune/HostRun.h"
#include "tests/system/autotune/RunningHost.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

using namespace corvane::test;

namespace {

/// A program in the middle of its work, one launch after another.
class DisturbedOutput : public testing::Test {
protected:
  DisturbedOutput() {
    launchOver();
    expectAllRows();
  }

  std::string directory() const { return folder.file("out"); }
  std::string log() const { return directory() + "/.auto.csv"; }

  /// Waits until one of the program's launches is over.
  void launchOver() {
    const std::string results = alone.readLine();
    EXPECT_NE(results, "");
    EXPECT_EQ(tuned.readLine(), results);
    ++launches;
  }

  void nextLaunch() {
    tuned.goOn();
    alone.goOn();
    launchOver();
  }

  void expectAllRows() const {
    const RowCounts expected = {{"accumulate,1024,,,64,,",
                                 {{"baseline", launches},
                                  {"c0S2", launches},
                                  {"g0S4", launches},
                                  {"l0S2", launches}}}};
    EXPECT_EQ(readTimingLog(readBytes(log())).rows, expected);
  }

  void expectEnd(const std::string &said = "") {
    EXPECT_EQ(tuned.end(), 0);
    EXPECT_EQ(alone.end(), 0);
    EXPECT_EQ(tuned.errors(), said);
  }

  /// The disk has no space for another whole line.
  void fillDisk() { tuned.limitFiles(std::filesystem::file_size(log()) + 20); }
  void makeRoomOnDisk() { tuned.limitFiles(RLIM_INFINITY); }

private:
  // The program ignores the signal that a write beyond the limit raises.
  static std::vector<std::string>
  deafToLimits(std::vector<std::string> command) {
    command.insert(command.begin(),
                   {"bash", "-c", "trap '' XFSZ; exec \"$0\""});
    return command;
  }

  const TempFolder folder;
  size_t launches = 0;
  RunningHost alone{hostProgram("paused"), withoutAgent()};
  RunningHost tuned{deafToLimits(hostProgram("paused")),
                    autotuning(directory())};
};

} // namespace

TEST_F(DisturbedOutput, RestoresALogThatWasDeleted) {
  nextLaunch();
  ASSERT_TRUE(std::filesystem::remove(log()));
  nextLaunch();
  expectAllRows();
  expectEnd();
  EXPECT_TRUE(std::filesystem::exists(directory() + "/autotune.csv"));
}

TEST_F(DisturbedOutput, RestoresALogThatWasEmptied) {
  nextLaunch();
  std::filesystem::resize_file(log(), 0);
  nextLaunch();
  expectAllRows();
  nextLaunch();
  expectAllRows();
  expectEnd();
}

TEST_F(DisturbedOutput, IsNotMadeAgainAfterItWasRemoved) {
  std::filesystem::remove_all(directory());
  nextLaunch();
  nextLaunch();
  EXPECT_FALSE(std::filesystem::exists(directory()));
  expectEnd();
}

TEST_F(DisturbedOutput, GetsEveryRowOnceItIsBack) {
  std::filesystem::remove_all(directory());
  nextLaunch();
  nextLaunch();
  std::filesystem::create_directory(directory());
  nextLaunch();
  expectAllRows();
  expectEnd();
  EXPECT_TRUE(std::filesystem::exists(directory() + "/main.html"));
}

// While the log's name is that of a folder, no user can write to the log, not
// even root.
TEST_F(DisturbedOutput, GetsEveryRowOnceItCanBeWrittenToAgain) {
  std::filesystem::remove(log());
  std::filesystem::create_directory(log());
  nextLaunch();
  nextLaunch();
  EXPECT_TRUE(std::filesystem::is_empty(log()));
  std::filesystem::remove(log());
  nextLaunch();
  expectAllRows();
  expectEnd();
}

TEST_F(DisturbedOutput, MayEndWithAFileInItsPlace) {
  std::filesystem::remove_all(directory());
  ASSERT_TRUE(writeBytes(directory(), "not a folder"));
  nextLaunch();
  expectEnd("ensureOutputDir() error\n");
  EXPECT_EQ(readBytes(directory()), "not a folder");
}

TEST_F(DisturbedOutput, KeepsNoPartOfALineThatTheDiskHasNoSpaceFor) {
  nextLaunch();
  const std::string before = readBytes(log());
  fillDisk();
  nextLaunch();
  nextLaunch();
  EXPECT_EQ(readBytes(log()), before);

  makeRoomOnDisk();
  nextLaunch();
  EXPECT_GT(readTimingLog(readBytes(log())).times.size(),
            readTimingLog(before).times.size());
  std::filesystem::remove(log());
  nextLaunch();
  expectAllRows();
  expectEnd();
}
