// Runs a host program and compares what it does with what it does alone.

#include "tests/system/autotune/HostRun.h"

#include <gtest/gtest.h>

using namespace corvane;

std::vector<std::string>
test::hostProgram(const std::string &name,
                  const std::vector<std::string> &words) {
  std::vector<std::string> command = {std::string(HOSTS_FOLDER) + "/" + name};
  command.insert(command.end(), words.begin(), words.end());
  return command;
}

test::Environment test::withoutAgent() {
  std::filesystem::create_directories(KERNEL_CACHE_FOLDER);
  return {{"POCL_CACHE_DIR", KERNEL_CACHE_FOLDER}};
}

test::Environment test::withAgent() {
  Environment environment = withoutAgent();
  environment["OPENCL_LAYERS"] = LAYER_FILE;
  return environment;
}

test::Environment test::autotuning(const std::string &directory) {
  Environment environment = withAgent();
  environment["CORVANE_AUTOTUNE"] = directory;
  environment["CORVANE_INSTALL_LOCATION"] = "/opt/corvane";
  return environment;
}

test::TimingLog test::autotune(const std::vector<std::string> &command,
                               const TempFolder &results) {
  const ProgramRun alone = runProgram(command, withoutAgent());
  const ProgramRun tuned = runProgram(command, autotuning(results.text()));
  EXPECT_FALSE(alone.out.empty());
  EXPECT_EQ(tuned.out, alone.out);
  EXPECT_EQ(tuned.err, alone.err);
  EXPECT_EQ(tuned.exitCode, alone.exitCode);
  return readTimingLog(results.read(".auto.csv"));
}
