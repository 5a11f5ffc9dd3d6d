// Tests of a runtime whose kernels have handles that the map of variants keeps
// for its own use.

#include "tests/behaviour/launch/Application.h"

#include "llvm/ADT/DenseMapInfo.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <cstring>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;

namespace {
using Info = llvm::DenseMapInfo<cl_kernel>;

/// Gives an odd handle to the kernel of one name, and answers the calls with
/// it. The scripted runtime answers all others.
struct OddRuntime {
  static inline cl_kernel odd;
  static inline std::string name;
  static inline std::vector<std::string> calls;
  static inline DispatchTable real;

  static void install(DispatchTable &table) {
    calls.clear();
    real = table;
    table.clCreateKernel = create;
    table.clReleaseKernel = release;
    table.clGetKernelInfo = tell;
    table.clSetKernelArg = set;
    table.clEnqueueNDRangeKernel = launch;
  }

private:
  static cl_kernel CL_API_CALL create(cl_program program, const char *asked,
                                      cl_int *status) {
    if (asked != name)
      return real.clCreateKernel(program, asked, status);
    *status = CL_SUCCESS;
    return odd;
  }
  static cl_int CL_API_CALL release(cl_kernel kernel) {
    return kernel == odd ? record("release") : real.clReleaseKernel(kernel);
  }
  static cl_int CL_API_CALL tell(cl_kernel kernel, cl_kernel_info what,
                                 size_t room, void *answer, size_t *size) {
    if (kernel != odd)
      return real.clGetKernelInfo(kernel, what, room, answer, size);
    const cl_uint references = 1;
    if (what == CL_KERNEL_REFERENCE_COUNT)
      std::memcpy(answer, &references, sizeof references);
    else
      std::memcpy(answer, name.c_str(), name.size() + 1);
    return CL_SUCCESS;
  }
  static cl_int CL_API_CALL set(cl_kernel kernel, cl_uint index, size_t size,
                                const void *value) {
    return kernel == odd ? record("set")
                         : real.clSetKernelArg(kernel, index, size, value);
  }
  static cl_int CL_API_CALL launch(cl_command_queue queue, cl_kernel kernel,
                                   cl_uint dimensions, const size_t *offset,
                                   const size_t *global, const size_t *local,
                                   cl_uint waits, const cl_event *waitList,
                                   cl_event *event) {
    if (kernel == odd)
      return record("launch");
    return real.clEnqueueNDRangeKernel(queue, kernel, dimensions, offset,
                                       global, local, waits, waitList, event);
  }
  static cl_int record(const char *call) {
    calls.emplace_back(call);
    return CL_SUCCESS;
  }
};

struct OddHandle : testing::TestWithParam<cl_kernel> {
  OddHandle() { OddRuntime::odd = GetParam(); }
};
} // namespace

TEST_P(OddHandle, OfAKernelMakesNoDifference) {
  OddRuntime::name = "k";
  Application app({}, OddRuntime::install);
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
  cl_kernel kernel = app.create("k");
  ASSERT_EQ(kernel, GetParam());

  EXPECT_EQ(app.set(kernel, 0, 1), CL_SUCCESS);
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_EQ(app.release(kernel), CL_SUCCESS);
  EXPECT_THAT(OddRuntime::calls, ElementsAre("set", "release"));
  EXPECT_THAT(app.launches(),
              ElementsAre(plainLaunch("k_coarsed_g0S4", "[4]")));
  EXPECT_THAT(app.runtime.alive("kernel"), testing::IsEmpty());
}

TEST_P(OddHandle, OfAVariantLeavesTheKernelToRunAlone) {
  OddRuntime::name = "k_coarsed_g0S4";
  Application app({}, OddRuntime::install);
  app.program.kernel("k").kernel("k_coarsed_g0S4");
  cl_kernel kernel = app.create("k");
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(), ElementsAre(plainLaunch("k", "[16]")));
  EXPECT_EQ(app.release(kernel), CL_SUCCESS);
  EXPECT_THAT(OddRuntime::calls, testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Marks, OddHandle,
                         testing::Values(Info::getEmptyKey(),
                                         Info::getTombstoneKey()),
                         testing::PrintToStringParamName());
