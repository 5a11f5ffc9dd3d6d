// Tests that settings and launches allocate nothing once warm.

#include "tests/behaviour/launch/AllocationCount.h"
#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <array>

using namespace corvane;
using namespace corvane::test;

namespace {
// Whether calls are answered without the scripted runtime, which allocates
// memory in every call.
bool quiet = false;
DispatchTable honest;
cl_kernel applications = nullptr;
int launchesOfVariants = 0;
int launchesOfKernels = 0;

cl_int CL_API_CALL setArgument(cl_kernel kernel, cl_uint index, size_t size,
                               const void *value) {
  return quiet ? CL_SUCCESS : honest.clSetKernelArg(kernel, index, size, value);
}

// Answers without an allocation. The variant has one argument more than the
// kernel.
cl_int CL_API_CALL tellAbout(cl_kernel kernel, cl_kernel_info what, size_t room,
                             void *value, size_t *size) {
  if (!quiet)
    return honest.clGetKernelInfo(kernel, what, room, value, size);
  *static_cast<cl_uint *>(value) = kernel == applications ? 4 : 5;
  return CL_SUCCESS;
}

cl_int CL_API_CALL launchKernel(cl_command_queue, cl_kernel kernel, cl_uint,
                                const size_t *, const size_t *, const size_t *,
                                cl_uint, const cl_event *, cl_event *) {
  ++(kernel == applications ? launchesOfKernels : launchesOfVariants);
  return CL_SUCCESS;
}

void makeQuietable(DispatchTable &table) {
  honest = table;
  table.clSetKernelArg = setArgument;
  table.clGetKernelInfo = tellAbout;
  table.clEnqueueNDRangeKernel = launchKernel;
}

/// A kernel with a variant, both launched before.
class Allocation : public testing::Test {
protected:
  Allocation() {
    app.program.kernel("k", 4).kernel("k_coarsed_g0S4d0S4", 5);
    kernel = app.create("k");
    applications = kernel;
    quiet = true;
    ErrorCapture errors;
    use(4);
    use(5);
    launchesOfKernels = launchesOfVariants = 0;
  }
  ~Allocation() override { quiet = false; }

  void set(cl_uint index, std::size_t size, const void *value) {
    EXPECT_EQ(app.cl.clSetKernelArg(kernel, index, size, value), CL_SUCCESS);
  }

  // The variant accepts a first argument that can be divided by 4.
  void use(cl_int value) {
    const std::array<unsigned char, 64> bytes{};
    set(0, sizeof value, &value);
    set(1, 24, bytes.data());
    set(2, 64, bytes.data());
    set(3, 1024, nullptr);
    for (const std::size_t global : {1024, 1023})
      EXPECT_EQ(app.cl.clEnqueueNDRangeKernel(nullptr, kernel, 1, nullptr,
                                              &global, nullptr, 0, nullptr,
                                              nullptr),
                CL_SUCCESS);
  }

  Application app{{}, makeQuietable};
  cl_kernel kernel = nullptr;
};
} // namespace

TEST_F(Allocation, IsCountedInTheAgentToo) {
  const std::array<unsigned char, 64> bytes{};
  const long before = allocationCount();
  ASSERT_GE(before, 0);
  set(1, 48, bytes.data());
  EXPECT_GT(allocationCount(), before);
}

TEST_F(Allocation, DoesNotHappenInSettingsAndLaunchesOfAVariant) {
  const long before = allocationCount();
  for (cl_int i = 1; i != 100; ++i)
    use(4 * i);
  const long after = allocationCount();
  EXPECT_EQ(after, before);
  EXPECT_EQ(launchesOfVariants, 99);
  EXPECT_EQ(launchesOfKernels, 99);
}

TEST_F(Allocation, DoesNotHappenWhenAnArgumentIsRejected) {
  ErrorCapture errors;
  const long before = allocationCount();
  use(5);
  const long after = allocationCount();
  EXPECT_EQ(after, before);
  EXPECT_EQ(launchesOfVariants, 0);
  EXPECT_EQ(launchesOfKernels, 2);
}
