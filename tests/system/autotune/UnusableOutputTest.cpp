// Tests of output directories that take nothing from the start.

#include "tests/system/autotune/HostRun.h"

#include <gtest/gtest.h>

using namespace corvane::test;

static std::string messageAbout(const std::string &directory) {
  return "CV: " + directory +
         " is invalid. There will be no autotune output generated.\n";
}

TEST(UnusableOutput, IsNamedOnceAndLeavesTheProgramInNormalMode) {
  const TempFolder folder;
  const auto command = hostProgram("threads");
  const std::string directory = folder.file("missing/out");
  const ProgramRun normal = runProgram(command, withAgent());
  const ProgramRun run = runProgram(command, autotuning(directory));
  EXPECT_EQ(run.out, normal.out);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(normal.err, "");
  EXPECT_EQ(run.err, messageAbout(directory));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(UnusableOutput, MayBeAFile) {
  const TempFolder folder;
  ASSERT_TRUE(folder.write("out", "kept"));
  const auto command = hostProgram("threads");
  const ProgramRun alone = runProgram(command, withoutAgent());
  const ProgramRun run = runProgram(command, autotuning(folder.file("out")));
  EXPECT_EQ(run.out, alone.out);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, messageAbout(folder.file("out")));
  EXPECT_EQ(folder.read("out"), "kept");
}
