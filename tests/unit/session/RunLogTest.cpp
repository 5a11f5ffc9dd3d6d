// The run record as it grows on disk.

#include "session/RunLog.h"

#include "results/runs/RunReader.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <thread>

using namespace corvane;
using namespace corvane::test;
using testing::IsEmpty;

namespace {
struct RunLogTest : testing::Test {
  RunRecord written() const { return readRun(folder.read("run.jsonl")); }

  static ConfigurationLine configuration(const std::string &kernel) {
    ConfigurationLine line;
    line.kernel = kernel;
    return line;
  }

  TempFolder folder{folderInMemory()};
  RunLog log{folder.text(), ProcessLine{}};
};
} // namespace

TEST_F(RunLogTest, BeginsWithTheProcess) {
  EXPECT_TRUE(written().process);
  EXPECT_THAT(written().problems, IsEmpty());
}

TEST_F(RunLogTest, NumbersDevicesProgramsAndConfigurations) {
  EXPECT_EQ(log.add(DeviceLine{}), 0U);
  EXPECT_EQ(log.add(ProgramLine{}), 0U);
  EXPECT_EQ(log.add(DeviceLine{}), 1U);
  EXPECT_EQ(log.add(configuration("a")), 0U);
  EXPECT_EQ(log.add(configuration("b")), 1U);
  const RunRecord run = written();
  EXPECT_THAT(run.problems, IsEmpty());
  EXPECT_EQ(run.devices.size(), 2U);
  EXPECT_EQ(run.configurations.at(1).line.kernel, "b");
}

TEST_F(RunLogTest, HasEachLineAsSoonAsItIsAdded) {
  log.add(DeviceLine{});
  log.add(ProgramLine{});
  log.add(configuration("k"));
  SampleLine sample;
  sample.microseconds = 1.5;
  for (std::size_t i = 1; i != 4; ++i) {
    log.add(sample);
    EXPECT_EQ(written().configurations.at(0).samples.size(), i);
  }
  DecisionLine decision;
  decision.winner = "g0S4";
  log.add(decision);
  EXPECT_EQ(written().configurations.at(0).decision->winner, "g0S4");
}

TEST_F(RunLogTest, TakesNothingAfterItsEnd) {
  EndLine end;
  end.launches = 5;
  log.close(end);
  log.add(DeviceLine{});
  const RunRecord run = written();
  ASSERT_TRUE(run.end);
  EXPECT_EQ(run.end->launches, 5U);
  EXPECT_THAT(run.devices, IsEmpty());
}

TEST_F(RunLogTest, KeepsTheLinesOfThreadsApart) {
  log.add(DeviceLine{});
  log.add(ProgramLine{});
  std::vector<std::thread> threads;
  for (int t = 0; t != 4; ++t)
    threads.emplace_back([this] {
      for (int i = 0; i != 50; ++i) {
        SampleLine sample;
        sample.configuration = log.add(configuration("k"));
        log.add(sample);
      }
    });
  for (std::thread &thread : threads)
    thread.join();
  const RunRecord run = written();
  EXPECT_EQ(run.problemCount, 0U);
  ASSERT_EQ(run.configurations.size(), 200U);
  for (const auto &[number, found] : run.configurations)
    EXPECT_EQ(found.samples.size(), 1U);
}

TEST_F(RunLogTest, GoesOnWhereTheFolderIsGone) {
  std::filesystem::remove_all(folder.path());
  log.add(DeviceLine{});
  EXPECT_FALSE(folder.has("run.jsonl"));
  std::filesystem::create_directory(folder.path());
  log.add(DeviceLine{});
  EXPECT_EQ(folder.read("run.jsonl").substr(0, 17), R"({"kind":"device",)");
}
