// Tests of a program that cancels the event that its launches wait for. The
// saves and restores around the variants wait for it as well.

#include "tests/system/autotune/HostRun.h"

#include <gmock/gmock.h>

using namespace corvane::test;
using testing::HasSubstr;

static ProgramRun runAutotuned(const char *layer, const TempFolder &results) {
  Environment environment = autotuning(results.text());
  environment["OPENCL_LAYERS"] = layer;
  return runProgram(hostProgram("cancelled"), environment);
}

static void expectAsAlone(const ProgramRun &run) {
  const ProgramRun alone = runProgram(hostProgram("cancelled"), withoutAgent());
  EXPECT_EQ(alone.exitCode, 0) << alone.err;
  EXPECT_THAT(alone.out, HasSubstr("the launch ended with -14\n"));
  EXPECT_EQ(run.out, alone.out);
  EXPECT_EQ(run.err, alone.err);
  EXPECT_EQ(run.exitCode, 0);
}

TEST(CancelledLaunch, EndsAsAloneUnderTheBareAgent) {
  const TempFolder results;
  expectAsAlone(runAutotuned(BARE_LAYER_FILE, results));
  EXPECT_THAT(results.read(".auto.csv"),
              HasSubstr("accumulate,1024,,,32,,,g0S4,"));
}

TEST(CancelledLaunch, EndsAsAloneUnderTheLayer) {
  const TempFolder results;
  expectAsAlone(runAutotuned(LAYER_FILE, results));
  EXPECT_THAT(results.read(".auto.csv"),
              HasSubstr("accumulate,1024,,,32,,,g0S4,"));
}
