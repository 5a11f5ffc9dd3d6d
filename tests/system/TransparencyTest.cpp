// Tests that a program that asks for everything sees no difference.

#include "tests/system/ExampleRun.h"

#include <gtest/gtest.h>

using namespace corvane::test;

TEST(LayeredRuntime, TellsClinfoTheSameAsTheRuntimeAlone) {
  const ProgramRun alone = runProgram({"clinfo"});
  ASSERT_EQ(alone.exitCode, 0)
      << "this test needs clinfo and an OpenCL runtime; on Debian: apt-get "
         "install clinfo pocl-opencl-icd\n"
      << alone.err;
  ASSERT_NE(alone.out.find("Device Name"), std::string::npos)
      << "no OpenCL device; on Debian: apt-get install pocl-opencl-icd";

  const ProgramRun layered =
      runProgram({"clinfo"}, {{"OPENCL_LAYERS", layerLibrary()}});
  EXPECT_EQ(layered.exitCode, 0);
  EXPECT_EQ(layered.out, alone.out);
  EXPECT_EQ(layered.err, alone.err);
}
