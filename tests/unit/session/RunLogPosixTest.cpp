// Run records on a disk that is full, and of processes that are killed.

#include "session/RunLog.h"

#include "results/runs/RunReader.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <csignal>

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

namespace {
DeviceLine named(const std::string &name) {
  DeviceLine line;
  line.name = name;
  return line;
}
} // namespace

TEST(RunLogOnAFullDisk, KeepsWholeLinesAndWritesTheRestWhenThereIsRoom) {
  const TempFolder folder;
  RunLog log(folder.text(), ProcessLine{});
  const std::string before = folder.read("run.jsonl");
  {
    const FileSizeLimit limit(before.size() + 20);
    log.add(named("a"));
    EXPECT_EQ(folder.read("run.jsonl"), before);
  }
  log.add(named("b"));
  const RunRecord run = readRun(folder.read("run.jsonl"));
  EXPECT_EQ(run.problemCount, 0U);
  ASSERT_EQ(run.devices.size(), 2U);
  EXPECT_EQ(run.devices.at(0).name, "a");
  EXPECT_EQ(run.devices.at(1).name, "b");
}

TEST(RunLogOnAFullDisk, DropsLinesThatWouldTakeTooMuchMemory) {
  const TempFolder folder;
  RunLog log(folder.text(), ProcessLine{});
  {
    const FileSizeLimit limit(folder.read("run.jsonl").size());
    for (int i = 0; i != 5; ++i)
      log.add(named(std::string(500'000, 'x')));
  }
  log.add(named("last"));
  const RunRecord run = readRun(folder.read("run.jsonl"));
  EXPECT_EQ(run.problemCount, 0U);
  ASSERT_EQ(run.devices.size(), 3U);
  EXPECT_EQ(run.devices.at(5).name, "last");
}

TEST(RunLogOfAKilledProcess, HasWholeLines) {
  // A kill in the middle of a write would need luck: many are tried.
  for (std::uintmax_t size = 2'000; size != 42'000; size += 4'000) {
    const TempFolder folder;
    const pid_t child = fork();
    if (child == 0) {
      RunLog log(folder.text(), ProcessLine{});
      for (;;)
        log.add(DeviceLine{});
    }
    std::error_code missing;
    while (!(std::filesystem::file_size(folder.file("run.jsonl"), missing) >
             size) ||
           missing)
      sched_yield();
    kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    const std::string text = folder.read("run.jsonl");
    const RunRecord run = readRun(text);
    EXPECT_TRUE(run.process);
    EXPECT_EQ(run.problemCount, 0U);
    EXPECT_GT(run.devices.size(), 5U);
  }
}
