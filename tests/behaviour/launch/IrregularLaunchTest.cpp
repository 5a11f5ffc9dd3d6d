// Tests of launches that nobody can compute with: the runtime refuses them.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;

namespace {
/// A launch as the application asks for it, and as the transcript shows it.
struct Irregular {
  std::string name;
  cl_uint workDim;
  bool hasGlobal;
  SizeList local;
  cl_int status; ///< the runtime's
  std::string shown;
};

// A variant stands ready that would take any regular launch.
class IrregularLaunch : public testing::TestWithParam<Irregular> {
protected:
  static void expectUnchanged(Application &app) {
    const Irregular &asked = GetParam();
    app.program.kernel("k").kernel("k_coarsed_g0S1");
    cl_kernel kernel = app.create("k");
    app.runtime.forgetTranscript();
    const SizeList global{16, 16, 16, 16};
    app.runtime.answer("clEnqueueNDRangeKernel", asked.status);
    ErrorCapture errors;
    EXPECT_EQ(app.cl.clEnqueueNDRangeKernel(
                  app.runtime.queue(), kernel, asked.workDim, nullptr,
                  asked.hasGlobal ? global.data() : nullptr,
                  asked.local.empty() ? nullptr : asked.local.data(), 0,
                  nullptr, nullptr),
              asked.status);
    EXPECT_THAT(app.runtime.transcript(), ElementsAre(asked.shown));
    EXPECT_THAT(errors.text(), testing::StartsWith("QrlAgent:: 910: "));
  }
};

std::string nameOf(const testing::TestParamInfo<Irregular> &info) {
  return info.param.name;
}

std::string launchOf(const std::string &sizes) {
  return "clEnqueueNDRangeKernel(queue 1, kernel k, " + sizes + ", [], null)";
}
} // namespace

TEST_P(IrregularLaunch, GoesToTheRuntimeUnchanged) {
  Application app;
  expectUnchanged(app);
}

TEST_P(IrregularLaunch, GoesToTheRuntimeUnchangedInAutotuningMode) {
  TuningApplication app;
  expectUnchanged(app);
  EXPECT_EQ(app.log(), app.header);
}

INSTANTIATE_TEST_SUITE_P(
    All, IrregularLaunch,
    testing::Values(Irregular{"WithoutDimensions",
                              0,
                              true,
                              {},
                              CL_INVALID_WORK_DIMENSION,
                              launchOf("0, null, [], null")},
                    Irregular{"WithFourDimensions",
                              4,
                              true,
                              {4, 4, 4, 4},
                              CL_INVALID_WORK_DIMENSION,
                              launchOf("4, null, [16, 16, 16], [4, 4, 4]")},
                    Irregular{"WithManyDimensions",
                              0xFFFFFFFF,
                              true,
                              {},
                              CL_INVALID_WORK_DIMENSION,
                              launchOf("4294967295, null, [16, 16, 16], null")},
                    Irregular{"WithoutGlobalSize",
                              1,
                              false,
                              {4},
                              CL_INVALID_GLOBAL_WORK_SIZE,
                              launchOf("1, null, null, [4]")},
                    Irregular{"WithALocalSizeOfZero",
                              2,
                              true,
                              {4, 0},
                              CL_INVALID_WORK_GROUP_SIZE,
                              launchOf("2, null, [16, 16], [4, 0]")}),
    nameOf);
