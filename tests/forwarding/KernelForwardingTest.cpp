// Tests that the hooks on kernels hand calls on.

#include "tests/forwarding/Probe.h"

#include "gmock/gmock.h"

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
class ForwardingKernels : public Forwarding {
protected:
  cl_program program = nonsense<cl_program>(1);
  cl_kernel kernel = nonsense<cl_kernel>(2);
};
} // namespace

INSTANTIATE_TEST_SUITE_P(, ForwardingKernels,
                         testing::Values(Known::State, Known::NothingAnyMore),
                         nameOfKnown);

TEST_P(ForwardingKernels, CreateKernelHandsNameAndStatusOn) {
  constexpr auto entry = &DispatchTable::clCreateKernel;
  using Entry = Probe<entry>;
  const char *name = "anything at all";
  cl_int status = 0;

  EXPECT_EQ(call<entry>(kernel, program, name, &status), kernel);

  EXPECT_EQ(status, unlikelyStatus);
  ASSERT_EQ(Entry::calls.size(), 1U);
  const auto [askedProgram, askedName, statusPlace] = Entry::calls[0];
  EXPECT_EQ(askedProgram, program);
  EXPECT_EQ(askedName, name);
  // With a state the hook itself needs the status.
  EXPECT_NE(statusPlace, nullptr);
  EXPECT_EQ(statusPlace == &status, !hasState());
}

TEST_P(ForwardingKernels, CreateKernelNeedsNoPlaceForItsStatus) {
  constexpr auto entry = &DispatchTable::clCreateKernel;
  const char *name = nullptr;
  cl_int *status = nullptr;
  EXPECT_EQ(call<entry>(kernel, program, name, status), kernel);
  ASSERT_EQ(Probe<entry>::calls.size(), 1U);
  EXPECT_EQ(std::get<1>(Probe<entry>::calls[0]), nullptr);
}

// The only result that is not the runtime's: the agent does not know the
// program.
TEST_P(ForwardingKernels, CreateKernelsInProgramKnowsItsPrograms) {
  constexpr auto entry = &DispatchTable::clCreateKernelsInProgram;
  using Entry = Probe<entry>;
  auto *kernels = nonsense<cl_kernel *>(3);
  auto *count = nonsense<cl_uint *>(4);

  const cl_int status =
      call<entry>(unlikelyStatus, program, 99U, kernels, count);

  if (hasState()) {
    EXPECT_EQ(status, CL_INVALID_PROGRAM);
    EXPECT_THAT(Entry::calls, IsEmpty());
  } else {
    EXPECT_EQ(status, unlikelyStatus);
    EXPECT_THAT(Entry::calls,
                ElementsAre(Entry::Call{program, 99, kernels, count}));
  }
}

TEST_P(ForwardingKernels, ReleaseKernelChangesNothing) {
  constexpr auto entry = &DispatchTable::clReleaseKernel;
  EXPECT_EQ(call<entry>(unlikelyStatus, kernel), unlikelyStatus);
  EXPECT_THAT(Probe<entry>::calls, ElementsAre(Probe<entry>::Call{kernel}));
}

TEST_P(ForwardingKernels, SetKernelArgChangesNothing) {
  constexpr auto entry = &DispatchTable::clSetKernelArg;
  using Entry = Probe<entry>;
  const auto *value = nonsense<const void *>(3);
  EXPECT_EQ(call<entry>(unlikelyStatus, kernel, 0xFFFFFFFF, SIZE_MAX, value),
            unlikelyStatus);
  EXPECT_THAT(Entry::calls,
              ElementsAre(Entry::Call{kernel, 0xFFFFFFFF, SIZE_MAX, value}));
}

TEST_P(ForwardingKernels, EnqueueNDRangeKernelChangesNothing) {
  constexpr auto entry = &DispatchTable::clEnqueueNDRangeKernel;
  using Entry = Probe<entry>;
  auto *queue = nonsense<cl_command_queue>(3);
  const auto *offset = nonsense<const std::size_t *>(4);
  const auto *global = nonsense<const std::size_t *>(5);
  const auto *local = nonsense<const std::size_t *>(6);
  const auto *waitList = nonsense<const cl_event *>(7);
  auto *event = nonsense<cl_event *>(8);

  EXPECT_EQ(call<entry>(unlikelyStatus, queue, kernel, 0xFFFFFFFF, offset,
                        global, local, 5U, waitList, event),
            unlikelyStatus);

  EXPECT_THAT(Entry::calls,
              ElementsAre(Entry::Call{queue, kernel, 0xFFFFFFFF, offset, global,
                                      local, 5, waitList, event}));
}
