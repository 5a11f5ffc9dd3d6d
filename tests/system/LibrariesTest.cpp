// Tests of what the built libraries export, read from the files.

#include "tests/system/ExampleRun.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace corvane::test;
using testing::UnorderedElementsAre;

static std::vector<std::string> exportsOf(const std::string &library) {
  const ProgramRun run = runProgram(
      {NM_PROGRAM, "--dynamic", "--defined-only", "--format=posix", library});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  std::vector<std::string> names;
  for (const std::string &line : linesOf(run.out))
    names.push_back(line.substr(0, line.find(' ')));
  return names;
}

TEST(AgentLibrary, ExportsItsTwoFunctionsAndNothingElse) {
  EXPECT_THAT(exportsOf(agentLibrary()),
              UnorderedElementsAre("clAgent_OnLoad", "clAgent_OnUnload"));
}

TEST(LayerLibrary, ExportsItsTwoFunctionsAndNothingElse) {
  EXPECT_THAT(exportsOf(layerLibrary()),
              UnorderedElementsAre("clGetLayerInfo", "clInitLayer"));
}
