// Tests of a raw timing log whose disk is full. A limit on the size of files
// plays the full disk.

#include "tests/behaviour/launch/AllocationCount.h"
#include "tests/behaviour/launch/Application.h"
#include "tests/support/FileSizeLimit.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <algorithm>

using namespace corvane;
using namespace corvane::test;

namespace {

// How often a launch gets memory. The runtime, which records each call, needs
// the same for every launch.
long allocationsOfALaunch(TuningApplication &app, cl_kernel kernel) {
  const long before = allocationCount();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  return allocationCount() - before;
}

} // namespace

TEST(FullDiskFromTheStart, CostsEachLaunchTheSame) {
  const FileSizeLimit limit(0);
  TuningApplication app;
  app.program.kernel("k");
  cl_kernel kernel = app.create("k");
  for (int i = 0; i != 20; ++i)
    allocationsOfALaunch(app, kernel);
  const long early = allocationsOfALaunch(app, kernel);
  for (int i = 0; i != 2000; ++i)
    allocationsOfALaunch(app, kernel);
  // A list of the agent's may just have grown.
  EXPECT_LE(allocationsOfALaunch(app, kernel), early + 20);
  EXPECT_EQ(app.log(), "");
}

TEST(FullDiskFromTheStart, LosesNoRowIfTheDiskHasSpaceAtTheFlush) {
  TuningApplication app;
  app.program.kernel("k");
  cl_kernel kernel = app.create("k");
  app.runtime.takes("k", {2000});
  ASSERT_TRUE(app.folder.write(app.logName, ""));
  {
    const FileSizeLimit limit(0);
    for (int i = 0; i != 3; ++i)
      EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
    EXPECT_EQ(app.log(), "");
  }
  app.agent.unload();
  EXPECT_EQ(app.log(), std::string(app.header) + "k,16,,,0,,,baseline,2.000\n"
                                                 "k,16,,,0,,,baseline,2.000\n"
                                                 "k,16,,,0,,,baseline,2.000\n");
}
