// Tests of arguments of all sizes, and of indices that no kernel has.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"
#include "tests/support/Words.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <array>
#include <cstdint>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {
struct OneArgument : Application {
  explicit OneArgument(const std::function<void(DispatchTable &)> &prepare = {})
      : Application({}, prepare) {
    program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
    kernel = create("k");
  }
  std::vector<std::string> replayed() {
    runtime.forgetTranscript();
    EXPECT_EQ(launch(kernel, {16}), CL_SUCCESS);
    return runtime.transcript({"clSetKernelArg"});
  }
  cl_kernel kernel;
};

std::string setting(std::size_t size, const std::string &value) {
  return "clSetKernelArg(kernel k_coarsed_g0S4, 0, " + std::to_string(size) +
         ", " + value + ")";
}
} // namespace

TEST(ArgSizes, HoldASixteenByteArgumentAsSixteenBytes) {
  OneArgument app;
  {
    const std::array<unsigned char, 16> value{1, 2,  3,  4,  5,  6,  7,  8,
                                              9, 10, 11, 12, 13, 14, 15, 16};
    app.set(app.kernel, 0, value);
  }
  EXPECT_THAT(app.replayed(),
              ElementsAre(setting(16, "01 02 03 04 05 06 07 08 09 0a 0b 0c 0d "
                                      "0e 0f 10")));
}

static cl_int CL_API_CALL refuseArgument(cl_kernel, cl_uint, size_t,
                                         const void *) {
  return CL_INVALID_ARG_SIZE;
}

TEST(ArgSizes, AreTheRuntimesToRefuseHoweverLarge) {
  OneArgument app(
      [](DispatchTable &table) { table.clSetKernelArg = refuseArgument; });
  const cl_int value = 1;
  for (const std::size_t size : {SIZE_MAX, SIZE_MAX / 2, std::size_t{1} << 46})
    EXPECT_EQ(app.cl.clSetKernelArg(app.kernel, 0, size, &value),
              CL_INVALID_ARG_SIZE);
}

TEST(ArgSizes, ReplayLocalMemoryAsASizeWithoutAValue) {
  OneArgument app;
  EXPECT_EQ(app.cl.clSetKernelArg(app.kernel, 0, 1024, nullptr), CL_SUCCESS);
  EXPECT_THAT(app.replayed(), ElementsAre(setting(1024, "null")));
}

TEST(ArgSizes, MayChangeBetweenSmallAndLarge) {
  OneArgument app;
  unsigned char fill = 0;
  for (const std::size_t size :
       {4, 16, 8, 32, 12, 1, 12, 24, 2, 3, 3, 5, 64, 7, 32, 4}) {
    const std::vector<unsigned char> value(size, ++fill);
    app.cl.clSetKernelArg(app.kernel, 0, size, value.data());
    EXPECT_THAT(app.replayed(),
                ElementsAre(setting(size, bytesInWords(size, value.data()))));
  }
}

TEST(ArgSizes, MayChangeToLocalMemoryAndBack) {
  OneArgument app;
  const std::vector<unsigned char> value(16, 3);
  app.cl.clSetKernelArg(app.kernel, 0, value.size(), value.data());
  app.cl.clSetKernelArg(app.kernel, 0, value.size(), nullptr);
  EXPECT_THAT(app.replayed(), ElementsAre(setting(16, "null")));
  app.cl.clSetKernelArg(app.kernel, 0, value.size(), value.data());
  EXPECT_THAT(app.replayed(),
              ElementsAre(setting(16, bytesInWords(16, value.data()))));
}

TEST(ArgSizes, MayBeMoreThanTheFirstThirtyThree) {
  Application app;
  app.program.kernel("k", 40).kernel("k_coarsed_g0S4d39S8", 40);
  cl_kernel kernel = app.create("k");
  for (cl_uint index = 0; index != 40; ++index)
    EXPECT_EQ(app.set(kernel, 39 - index, cl_int{8}), CL_SUCCESS);
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.runtime.transcript({"clSetKernelArg"}), testing::SizeIs(40));
}

namespace {
decltype(DispatchTable::clSetKernelArg) honestSetting = nullptr;

cl_int CL_API_CALL acceptAnyIndex(cl_kernel kernel, cl_uint index, size_t size,
                                  const void *value) {
  return index == 0 ? honestSetting(kernel, index, size, value) : CL_SUCCESS;
}
} // namespace

// A variant cannot be given an argument with such an index.
TEST(ArgSizes, KeepVariantsFromRunningAfterAnIndexThatNoKernelHas) {
  for (const cl_uint index : {0xFFFFFFFFU, 0xFFFFFFFEU, 0x7FFFFFFFU, 65536U}) {
    OneArgument app([](DispatchTable &table) {
      honestSetting = table.clSetKernelArg;
      table.clSetKernelArg = acceptAnyIndex;
    });
    app.set(app.kernel, 0, cl_int{5});
    EXPECT_THAT(app.replayed(), ElementsAre(setting(4, "05 00 00 00")));
    const std::vector<unsigned char> large(100, 1);
    EXPECT_EQ(
        app.cl.clSetKernelArg(app.kernel, index, large.size(), large.data()),
        CL_SUCCESS);
    EXPECT_THAT(app.replayed(), IsEmpty());
    EXPECT_THAT(app.launches(), ElementsAre(plainLaunch("k", "[16]")));
    EXPECT_EQ(app.release(app.kernel), CL_SUCCESS);
  }
}

static const std::vector<unsigned char> tooLarge((1U << 20) + 1, 7);

TEST(ArgSizes, KeepVariantsFromRunningUntilAValueIsNotTooLargeAnyMore) {
  OneArgument app;
  app.set(app.kernel, 0, cl_int{5});
  for (int i = 0; i != 2; ++i)
    EXPECT_EQ(
        app.cl.clSetKernelArg(app.kernel, 0, tooLarge.size(), tooLarge.data()),
        CL_SUCCESS);
  EXPECT_THAT(app.replayed(), IsEmpty());
  EXPECT_THAT(app.launches(), ElementsAre(plainLaunch("k", "[16]")));

  app.set(app.kernel, 0, cl_int{6});
  EXPECT_THAT(app.replayed(), ElementsAre(setting(4, "06 00 00 00")));
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4", "[4]")));
}

TEST(ArgSizes, KeepVariantsFromRunningAlsoWhenTheFirstValueIsTooLarge) {
  OneArgument app;
  EXPECT_EQ(
      app.cl.clSetKernelArg(app.kernel, 0, tooLarge.size(), tooLarge.data()),
      CL_SUCCESS);
  EXPECT_THAT(app.replayed(), IsEmpty());
  EXPECT_THAT(app.launches(), ElementsAre(plainLaunch("k", "[16]")));
}

TEST(ArgSizes, KeepVariantsFromBeingTunedWithoutAValueThatIsTooLarge) {
  TuningApplication app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, cl_int{5});
  app.cl.clSetKernelArg(kernel, 0, tooLarge.size(), tooLarge.data());
  app.runtime.forgetTranscript();
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(1));
  // The kernel itself must not get the old value again either.
  EXPECT_THAT(app.runtime.transcript({"clSetKernelArg"}), IsEmpty());

  app.set(kernel, 0, cl_int{6});
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(3));
}

TEST(ArgSizes, RejectAVariantWhoseDivisorMeetsLocalMemory) {
  Application app;
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4d0S4", 1);
  cl_kernel kernel = app.create("k");
  EXPECT_EQ(app.cl.clSetKernelArg(kernel, 0, 8, nullptr), CL_SUCCESS);
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), ElementsAre(plainLaunch("k", "[16]")));
}
