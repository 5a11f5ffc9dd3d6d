// Tests of launches whose dimensions or sizes make no sense.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {
/// A launch as the application asks for it, and as the transcript shows it.
struct Irregular {
  std::string name;
  cl_uint workDim;
  bool hasGlobal;
  SizeList local;
  cl_int status;     ///< the runtime's
  std::string sizes; ///< as the transcript shows them
};

constexpr const char *incompatible =
    "Corvane's kernel cannot be launch due to incompatible ND range values or "
    "non-expected input scalar values\n";

cl_int launchIrregular(Application &app, cl_kernel kernel,
                       const Irregular &asked) {
  const SizeList global{16, 16, 16, 16};
  return app.cl.clEnqueueNDRangeKernel(
      app.runtime.queue(), kernel, asked.workDim, nullptr,
      asked.hasGlobal ? global.data() : nullptr,
      asked.local.empty() ? nullptr : asked.local.data(), 0, nullptr, nullptr);
}

// The kernel has a variant that takes every regular launch.
class IrregularLaunch : public testing::TestWithParam<Irregular> {
protected:
  static cl_kernel createKernel(Application &app) {
    app.program.kernel("k").kernel("k_coarsed_g0S1");
    cl_kernel kernel = app.create("k");
    app.runtime.forgetTranscript();
    return kernel;
  }
};

std::string nameOf(const testing::TestParamInfo<Irregular> &info) {
  return info.param.name;
}

std::string launchOf(const std::string &kernel, const std::string &sizes,
                     const std::string &event) {
  return "clEnqueueNDRangeKernel(queue 1, kernel " + kernel + ", " + sizes +
         ", [], " + event + ")";
}
} // namespace

TEST_P(IrregularLaunch, GoesToTheRuntimeUnchanged) {
  Application app;
  cl_kernel kernel = createKernel(app);
  app.runtime.answer("clEnqueueNDRangeKernel", GetParam().status);
  ErrorCapture errors;
  EXPECT_EQ(launchIrregular(app, kernel, GetParam()), GetParam().status);
  EXPECT_THAT(app.runtime.transcript(),
              ElementsAre(launchOf("k", GetParam().sizes, "null")));
  EXPECT_THAT(errors.text(), HasSubstr("QrlAgent:: 910: "));
}

// For the conditions a missing size is zero, which every factor divides; but
// there is no size that could be rewritten.
TEST_P(IrregularLaunch, IsWarnedOfWhenAVariantAcceptsAllButTheMissingSize) {
  Application app;
  cl_kernel kernel = createKernel(app);
  app.runtime.answer("clEnqueueNDRangeKernel", GetParam().status);
  ErrorCapture errors;
  EXPECT_EQ(launchIrregular(app, kernel, GetParam()), GetParam().status);
  if (GetParam().hasGlobal)
    EXPECT_THAT(errors.text(), Not(HasSubstr(incompatible)));
  else
    EXPECT_THAT(errors.text(), StartsWith(incompatible));
}

TEST_P(IrregularLaunch, IsTunedLikeAnyOther) {
  TuningApplication app;
  cl_kernel kernel = createKernel(app);
  app.runtime.answer("clEnqueueNDRangeKernel", GetParam().status);
  ErrorCapture errors;
  EXPECT_EQ(launchIrregular(app, kernel, GetParam()), GetParam().status);
  EXPECT_EQ(app.launches().back(), launchOf("k", GetParam().sizes, "&"));
  EXPECT_EQ(app.runtime.transcript().back(), "clFlush(queue 1)");
  EXPECT_THAT(errors.text(), StartsWith("QrlAgent:: 1145: "));
  EXPECT_EQ(app.log(), app.header);
}

TEST(IrregularLaunches, WithoutDimensionsRunAVariantThatLooksAtNone) {
  Application app;
  app.program.kernel("k").kernel("k_coarsed_r0");
  cl_kernel kernel = app.create("k");
  ErrorCapture errors;
  EXPECT_EQ(launchIrregular(app, kernel, {"", 0, true, {}, 0, ""}),
            CL_INVALID_WORK_DIMENSION);
  EXPECT_EQ(app.launches().back(),
            launchOf("k_coarsed_r0", "0, null, [], null", "null"));
}

TEST(IrregularLaunches, ThatTheRuntimeAcceptsAreTimedUnderTheSizesGiven) {
  TuningApplication app;
  app.program.kernel("k").kernel("k_coarsed_g0S2");
  cl_kernel kernel = app.create("k");
  EXPECT_EQ(launchIrregular(app, kernel, {"", 2, true, {4, 0}, 0, ""}),
            CL_SUCCESS);
  EXPECT_EQ(app.log(), std::string(app.header) +
                           "k,16,16,,4,0,,g0S2,1.000\n"
                           "k,16,16,,4,0,,baseline,1.000\n");
}

TEST(IrregularLaunches, GiveVariantsZeroGroupsWhereTheSizesDoNotTell) {
  TuningApplication app;
  app.program.kernel("k").kernel("k_coarsed_g0S2", 1);
  cl_kernel kernel = app.create("k");
  EXPECT_EQ(launchIrregular(app, kernel, {"", 2, true, {4, 0}, 0, ""}),
            CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clSetKernelArg"}),
              ElementsAre("clSetKernelArg(kernel k_coarsed_g0S2, 0, 16, 04 00 "
                          "00 00 00 00 00 00 00 00 00 00 00 00 00 00)"));
}

INSTANTIATE_TEST_SUITE_P(
    All, IrregularLaunch,
    testing::Values(Irregular{"WithoutDimensions",
                              0,
                              true,
                              {},
                              CL_INVALID_WORK_DIMENSION,
                              "0, null, [], null"},
                    Irregular{"WithFourDimensions",
                              4,
                              true,
                              {4, 4, 4, 4},
                              CL_INVALID_WORK_DIMENSION,
                              "4, null, [16, 16, 16], [4, 4, 4]"},
                    Irregular{"WithManyDimensions",
                              0xFFFFFFFF,
                              true,
                              {},
                              CL_INVALID_WORK_DIMENSION,
                              "4294967295, null, [16, 16, 16], null"},
                    Irregular{"WithoutGlobalSize",
                              1,
                              false,
                              {4},
                              CL_INVALID_GLOBAL_WORK_SIZE,
                              "1, null, null, [4]"},
                    Irregular{"WithALocalSizeOfZero",
                              2,
                              true,
                              {4, 0},
                              CL_INVALID_WORK_GROUP_SIZE,
                              "2, null, [16, 16], [4, 0]"}),
    nameOf);
