// Tests of launches with a global offset, which are the kernel's own.

#include "tests/system/layer/LayeredRuntime.h"

#include <array>

using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
class LayeredOffsets : public LayeredRuntime {
protected:
  /// Creates "k" with its variant; first loads in normal mode if that was not
  /// done.
  void createKernelWithVariant() {
    withVariant(runtime.sourceMakes());
    cl_program program = createProgram();
    build(program);
    kernel = cl().clCreateKernel(program, "k", nullptr);
    runtime.forgetTranscript();
  }

  cl_int launch(const size_t *offset, cl_uint workDim = 1) {
    const std::array<size_t, 3> global{64, 1, 1};
    const std::array<size_t, 3> local{16, 1, 1};
    return cl().clEnqueueNDRangeKernel(runtime.queue(), kernel, workDim, offset,
                                       global.data(), local.data(), 0, nullptr,
                                       nullptr);
  }

  std::vector<std::string> launches() {
    return runtime.transcript({"clEnqueueNDRangeKernel"});
  }

  cl_kernel kernel = nullptr;
};

cl_int CL_API_CALL refuseDimension(cl_command_queue, cl_kernel, cl_uint,
                                   const size_t *, const size_t *,
                                   const size_t *, cl_uint, const cl_event *,
                                   cl_event *) {
  return CL_INVALID_WORK_DIMENSION;
}
} // namespace

TEST_F(LayeredOffsets, ReachTheApplicationsKernelInNormalMode) {
  createKernelWithVariant();
  const size_t offset = 64;
  EXPECT_EQ(launch(&offset), CL_SUCCESS);
  EXPECT_THAT(runtime.transcript(),
              ElementsAre("clEnqueueNDRangeKernel(queue 1, kernel k, 1, [64], "
                          "[64], [16], [], null)"));
}

TEST_F(LayeredOffsets, ReachTheApplicationsKernelInAutotuningMode) {
  loadAutotuning();
  createKernelWithVariant();
  const size_t offset = 64;
  EXPECT_EQ(launch(&offset), CL_SUCCESS);
  // The event is the layer's, by which it keeps launches apart.
  EXPECT_THAT(launches(),
              ElementsAre("clEnqueueNDRangeKernel(queue 1, kernel k, 1, [64], "
                          "[64], [16], [], event 1)"));
  EXPECT_THAT(runtime.transcript({"clEnqueueReadBuffer"}), testing::IsEmpty());
}

TEST_F(LayeredOffsets, CountInEveryDimension) {
  createKernelWithVariant();
  const std::array<size_t, 3> offset{0, 0, 1};
  EXPECT_EQ(launch(offset.data(), 3), CL_SUCCESS);
  EXPECT_THAT(launches(),
              ElementsAre("clEnqueueNDRangeKernel(queue 1, kernel k, 3, "
                          "[0, 0, 1], [64, 1, 1], [16, 1, 1], [], null)"));
}

TEST_F(LayeredOffsets, OfZeroLeaveTheLaunchToAVariant) {
  createKernelWithVariant();
  const std::array<size_t, 3> offset{0, 0, 1}; // the third does not count
  EXPECT_EQ(launch(offset.data(), 2), CL_SUCCESS);
  EXPECT_THAT(
      launches(),
      ElementsAre("clEnqueueNDRangeKernel(queue 1, kernel k_coarsed_g0S4, 2, "
                  "[0, 0], [16, 1], [16, 1], [], null)"));
}

TEST_F(LayeredOffsets, AreNotReadForAWorkDimensionThatDoesNotExist) {
  runtime.ownTable().clEnqueueNDRangeKernel = refuseDimension;
  createKernelWithVariant();
  const auto *unreadable = reinterpret_cast<const size_t *>(sizeof(size_t));
  EXPECT_EQ(launch(unreadable, 4), CL_INVALID_WORK_DIMENSION);
}
