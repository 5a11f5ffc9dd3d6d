// Tests that the hooks on programs hand calls on.

#include "tests/forwarding/Probe.h"

#include "gmock/gmock.h"

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;

namespace {
class ForwardingPrograms : public Forwarding {
protected:
  using Notify = void(CL_CALLBACK *)(cl_program, void *);
  static void CL_CALLBACK neverCalled(cl_program, void *) { FAIL(); }

  cl_context context = nonsense<cl_context>(1);
  cl_program program = nonsense<cl_program>(2);
  cl_device_id devices[2] = {nonsense<cl_device_id>(3),
                             nonsense<cl_device_id>(4)};
  cl_program inputs[3] = {nonsense<cl_program>(5), nonsense<cl_program>(6),
                          nonsense<cl_program>(7)};
  const cl_device_id *deviceList = devices;
  const cl_program *inputList = inputs;
  const char *options = "-w";
  Notify notify = neverCalled;
  void *userData = nonsense<void *>(8);
};
} // namespace

INSTANTIATE_TEST_SUITE_P(, ForwardingPrograms,
                         testing::Values(Known::State, Known::NothingAnyMore),
                         nameOfKnown);

TEST_P(ForwardingPrograms, CreateProgramWithSourceChangesNothing) {
  constexpr auto entry = &DispatchTable::clCreateProgramWithSource;
  using Entry = Probe<entry>;
  auto *strings = nonsense<const char **>(9);
  const auto *lengths = nonsense<const std::size_t *>(10);
  cl_int status = 0;

  EXPECT_EQ(call<entry>(program, context, 3U, strings, lengths, &status),
            program);

  EXPECT_EQ(status, unlikelyStatus);
  EXPECT_THAT(Entry::calls,
              ElementsAre(Entry::Call{context, 3, strings, lengths, &status}));
}

TEST_P(ForwardingPrograms, CreateProgramWithSourceHasAPlaceForTheStatus) {
  constexpr auto entry = &DispatchTable::clCreateProgramWithSource;
  using Entry = Probe<entry>;
  const char **strings = nullptr;
  const std::size_t *lengths = nullptr;
  cl_int *status = nullptr;

  EXPECT_EQ(call<entry>(program, context, 0U, strings, lengths, status),
            program);

  ASSERT_EQ(Entry::calls.size(), 1U);
  EXPECT_NE(std::get<4>(Entry::calls[0]), nullptr);
}

TEST_P(ForwardingPrograms, ReleaseProgramChangesNothing) {
  constexpr auto entry = &DispatchTable::clReleaseProgram;
  EXPECT_EQ(call<entry>(unlikelyStatus, program), unlikelyStatus);
  EXPECT_THAT(Probe<entry>::calls, ElementsAre(Probe<entry>::Call{program}));
}

TEST_P(ForwardingPrograms, BuildProgramChangesNothing) {
  constexpr auto entry = &DispatchTable::clBuildProgram;
  using Entry = Probe<entry>;
  EXPECT_EQ(call<entry>(unlikelyStatus, program, 2U, deviceList, options,
                        notify, userData),
            unlikelyStatus);
  EXPECT_THAT(Entry::calls,
              ElementsAre(Entry::Call{program, 2, deviceList, options, notify,
                                      userData}));
}

TEST_P(ForwardingPrograms, GetProgramInfoChangesNothing) {
  constexpr auto entry = &DispatchTable::clGetProgramInfo;
  using Entry = Probe<entry>;
  auto *value = nonsense<void *>(9);
  auto *size = nonsense<std::size_t *>(10);
  for (const cl_program_info what :
       {cl_program_info{0xFFFFFFFF}, cl_program_info{CL_PROGRAM_SOURCE},
        cl_program_info{CL_PROGRAM_NUM_KERNELS}}) {
    EXPECT_EQ(call<entry>(unlikelyStatus, program, what, 77U, value, size),
              unlikelyStatus);
    EXPECT_THAT(Entry::calls,
                ElementsAre(Entry::Call{program, what, 77, value, size}));
  }
}

// With a state the hook makes the call to find out whether the runtime answers.
TEST_P(ForwardingPrograms, GetProgramInfoAsksForNamesWithoutAPlaceForThem) {
  constexpr auto entry = &DispatchTable::clGetProgramInfo;
  using Entry = Probe<entry>;
  const cl_program_info names = CL_PROGRAM_KERNEL_NAMES;
  auto *value = nonsense<void *>(9);
  auto *size = nonsense<std::size_t *>(10);

  EXPECT_EQ(call<entry>(unlikelyStatus, program, names, 77U, value, size),
            unlikelyStatus);

  ASSERT_EQ(Entry::calls.size(), 1U);
  const auto [asked, what, capacity, place, sizePlace] = Entry::calls[0];
  EXPECT_EQ(asked, program);
  EXPECT_EQ(what, names);
  EXPECT_EQ(capacity, hasState() ? 0U : 77U);
  EXPECT_EQ(place, hasState() ? nullptr : value);
  if (!hasState()) {
    EXPECT_EQ(sizePlace, size);
  }
}

// If the runtime had the notification function, it would call it before the
// agent has looked at the program.
TEST_P(ForwardingPrograms, LinkProgramKeepsTheNotificationBackWithState) {
  constexpr auto entry = &DispatchTable::clLinkProgram;
  using Entry = Probe<entry>;
  cl_int status = 0;

  EXPECT_EQ(call<entry>(program, context, 2U, deviceList, options, 3U,
                        inputList, notify, userData, &status),
            program);

  EXPECT_EQ(status, unlikelyStatus);
  EXPECT_THAT(Entry::calls,
              ElementsAre(Entry::Call{context, 2, deviceList, options, 3,
                                      inputList, hasState() ? nullptr : notify,
                                      userData, &status}));
}

TEST_P(ForwardingPrograms, LinkProgramHasAPlaceForTheStatusWithState) {
  constexpr auto entry = &DispatchTable::clLinkProgram;
  using Entry = Probe<entry>;
  cl_int *status = nullptr;

  EXPECT_EQ(call<entry>(program, context, 2U, deviceList, options, 3U,
                        inputList, notify, userData, status),
            program);

  ASSERT_EQ(Entry::calls.size(), 1U);
  EXPECT_EQ(std::get<8>(Entry::calls[0]) != nullptr, hasState());
}
