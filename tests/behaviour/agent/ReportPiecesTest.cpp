// Tests that a line on standard error is one write, so that lines never mix.

#include "tests/behaviour/Calls.h"
#include "tests/support/ErrorPieces.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <string>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;

TEST(ReportPieces, AreOneALine) {
  FakeRuntime runtime;
  LoadedAgent agent(runtime);
  ErrorPieces pieces;
  runtime.answer("clReleaseProgram", -14);
  agent.table().clReleaseProgram(nullptr);
  agent.table().clReleaseProgram(nullptr);
  const std::string line = "QrlAgent:: 148: CL Error: unknown code(-14)\n";
  EXPECT_THAT(pieces.read(), ElementsAre(line, line));
}

TEST(ReportPieces, IncludeAWarning) {
  FakeRuntime runtime;
  ErrorPieces pieces;
  LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", "/nowhere/to/be/found"}});
  EXPECT_THAT(pieces.read(),
              ElementsAre("CV: /nowhere/to/be/found is invalid. There will be "
                          "no autotune output generated.\n"));
}
