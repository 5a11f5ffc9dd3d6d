// Tests of arguments that may be memory of which the agent has no record.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/Platform.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <cstdint>

using namespace corvane;
using namespace corvane::test;
using testing::SizeIs;

namespace {
constexpr std::size_t kernelAlone = 1;
constexpr std::size_t variantAndKernel = 2;

/// A kernel with a variant. Its argument, unless a test says otherwise, is a
/// sub-buffer: a memory object that no hook has seen.
class UnknownMemory : public testing::Test {
protected:
  static void describe(TuningApplication &app) {
    app.program.kernel("k_coarsed_g0S4", 1).kernel("k", 1);
  }
  template <typename Value>
  static std::vector<std::string> launchesWith(TuningApplication &app,
                                               const Value &value) {
    cl_kernel kernel = app.create("k");
    app.set(kernel, 0, value);
    app.runtime.forgetTranscript();
    EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
    return app.launches();
  }
  std::vector<std::string> launchesDeclared(const Declaration &declaration) {
    describe(app);
    app.program.declares(0, declaration);
    return launchesWith(app, app.runtime.addBuffer(4));
  }

  TuningApplication app;
};
} // namespace

TEST_F(UnknownMemory, KeepsVariantsFromRunningWhenItIsWritable) {
  EXPECT_THAT(launchesDeclared({CL_KERNEL_ARG_ADDRESS_GLOBAL}),
              SizeIs(kernelAlone));
}

TEST_F(UnknownMemory, LetsVariantsRunWhenItIsConstantMemory) {
  EXPECT_THAT(launchesDeclared({CL_KERNEL_ARG_ADDRESS_CONSTANT}),
              SizeIs(variantAndKernel));
}

TEST_F(UnknownMemory, LetsVariantsRunWhenItIsPointedToAsConst) {
  EXPECT_THAT(
      launchesDeclared({CL_KERNEL_ARG_ADDRESS_GLOBAL, CL_KERNEL_ARG_ACCESS_NONE,
                        CL_KERNEL_ARG_TYPE_CONST}),
      SizeIs(variantAndKernel));
}

TEST_F(UnknownMemory, LetsVariantsRunWhenItIsAPlainValue) {
  EXPECT_THAT(launchesDeclared({CL_KERNEL_ARG_ADDRESS_PRIVATE}),
              SizeIs(variantAndKernel));
}

TEST_F(UnknownMemory, LetsVariantsRunWhenItIsAnImageThatIsOnlyRead) {
  EXPECT_THAT(launchesDeclared({CL_KERNEL_ARG_ADDRESS_GLOBAL,
                                CL_KERNEL_ARG_ACCESS_READ_ONLY}),
              SizeIs(variantAndKernel));
}

TEST_F(UnknownMemory, KeepsVariantsFromRunningWhenItIsAnImageToWrite) {
  EXPECT_THAT(launchesDeclared({CL_KERNEL_ARG_ADDRESS_GLOBAL,
                                CL_KERNEL_ARG_ACCESS_WRITE_ONLY,
                                CL_KERNEL_ARG_TYPE_CONST}),
              SizeIs(kernelAlone));
}

TEST_F(UnknownMemory, KeepsVariantsFromRunningWhenTheRuntimeDoesNotTell) {
  describe(app);
  EXPECT_THAT(launchesWith(app, app.runtime.addBuffer(4)), SizeIs(kernelAlone));
}

TEST_F(UnknownMemory, IsNotSuspectedOfNumbersThatAreNoHandles) {
  describe(app);
  app.program.declares(0, {CL_KERNEL_ARG_ADDRESS_GLOBAL});
  for (const cl_ulong number :
       {cl_ulong{0}, cl_ulong{4095}, cl_ulong{100001}, ~cl_ulong{0}})
    EXPECT_THAT(launchesWith(app, number), SizeIs(variantAndKernel)) << number;
  EXPECT_THAT(launchesWith(app, 1.5), SizeIs(variantAndKernel));
}

TEST_F(UnknownMemory, IsSuspectedWhereverMemoryLiesAndNowhereElse) {
  describe(app);
  app.program.declares(0, {CL_KERNEL_ARG_ADDRESS_GLOBAL});
  char *page = mapLowPage();
  ASSERT_TRUE(page);
  char *const object = page + 64;
  EXPECT_THAT(launchesWith(app, object), SizeIs(kernelAlone));
  unmapLowPage(page);
  EXPECT_THAT(launchesWith(app, object), SizeIs(variantAndKernel));
}

TEST_F(UnknownMemory, IsSuspectedAtTheStartOfAPageBeyondAllSizes) {
  describe(app);
  app.program.declares(0, {CL_KERNEL_ARG_ADDRESS_GLOBAL});
  alignas(4096) static char object[4096];
  ASSERT_GT(reinterpret_cast<std::uintptr_t>(object), std::uintptr_t{1} << 32)
      << "the test program lies at low addresses";
  EXPECT_THAT(launchesWith(app, &object[0]), SizeIs(kernelAlone));
}

TEST_F(UnknownMemory, IsNotSuspectedOfRoundNumbersThatAreAddresses) {
  describe(app);
  app.program.declares(0, {CL_KERNEL_ARG_ADDRESS_GLOBAL});
  char *page = mapLowPage();
  ASSERT_TRUE(page);
  EXPECT_THAT(launchesWith(app, page), SizeIs(variantAndKernel));
  unmapLowPage(page);
}

TEST_F(UnknownMemory, IsNotSuspectedInValuesOfOtherSizes) {
  describe(app);
  app.program.declares(0, {CL_KERNEL_ARG_ADDRESS_GLOBAL});
  EXPECT_THAT(launchesWith(app, cl_int{65536}), SizeIs(variantAndKernel));
  EXPECT_THAT(app.runtime.transcript({"clGetKernelArgInfo"}),
              testing::IsEmpty());
}

TEST(UnknownMemoryOfAnOldRuntime, IsTakenForAPlainValue) {
  TuningApplication app({}, [](DispatchTable &table) {
    table.clGetKernelArgInfo = nullptr; // OpenCL 1.1 does not have it
  });
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, app.runtime.addBuffer(4));
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), SizeIs(variantAndKernel));
}
