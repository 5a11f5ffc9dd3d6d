// Tests of the link: its notification, its second attempt, its kernels.

#include "tests/behaviour/Calls.h"
#include "tests/support/ErrorCapture.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {
using Notify = void(CL_CALLBACK *)(cl_program, void *);

void CL_CALLBACK countCalls(cl_program, void *data) {
  ++*static_cast<int *>(data);
}

class PlainLink : public testing::Test {
protected:
  cl_program link(Notify notify = nullptr, void *data = nullptr,
                  cl_int *status = nullptr) {
    return cl().clLinkProgram(runtime.context(), 0, nullptr, "-x", 0, nullptr,
                              notify, data, status);
  }
  const DispatchTable &cl() const { return agent.table(); }

  FakeRuntime runtime;
  LoadedAgent agent{runtime};
};

class Link : public PlainLink {
protected:
  TempFolder folder;
  EnvGuard output{"CORVANE_AUTOTUNE", folder.text()};
};
} // namespace

TEST_F(Link, CollectsTheKernelsOfTheLinkedProgram) {
  runtime.linkMakes().kernel("k").kernel("k_coarsed_g0S4");
  cl_int status = -1;
  cl_program program = link(nullptr, nullptr, &status);
  EXPECT_EQ(status, CL_SUCCESS);
  EXPECT_EQ(kernelNames(cl(), program), "k");
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST_F(PlainLink, CollectsNothingWhenNoOutputIsAskedFor) {
  runtime.linkMakes().kernel("k").kernel("k_coarsed_g0S4");
  cl_program program = link();
  EXPECT_EQ(kernelNames(cl(), program), "k;k_coarsed_g0S4");
  EXPECT_THAT(runtime.transcript({"clCreateKernelsInProgram"}), IsEmpty());
}

// With a notification function the runtime could finish the link later.
TEST_F(Link, KeepsTheNotificationFromTheRuntimeButHandsItsDataOn) {
  int calls = 0;
  link(countCalls, &calls);
  EXPECT_THAT(
      runtime.transcript({"clLinkProgram"}),
      ElementsAre("clLinkProgram(context 1, [], \"-x\", [], null, &, &)"));
  EXPECT_EQ(calls, 0);
}

TEST_F(PlainLink, HasTheNotificationAfterTheUnload) {
  agent.unload();
  int calls = 0;
  link(countCalls, &calls);
  EXPECT_EQ(calls, 1);
}

TEST_F(Link, AsksForTheDevicesOnlyWhenTheApplicationNamesNone) {
  runtime.linkMakes();
  link();
  EXPECT_THAT(runtime.transcript({"clGetProgramInfo"}),
              ElementsAre(HasSubstr("CL_PROGRAM_NUM_DEVICES"),
                          HasSubstr("CL_PROGRAM_DEVICES")));
  runtime.forgetTranscript();
  cl_device_id device = runtime.device();
  cl().clLinkProgram(runtime.context(), 1, &device, nullptr, 0, nullptr,
                     nullptr, nullptr, nullptr);
  EXPECT_THAT(runtime.transcript({"clGetProgramInfo"}), IsEmpty());
}

TEST_F(Link, TriesASecondTimeWithTheNotificationAndReturnsThatProgram) {
  runtime.answer("clLinkProgram", CL_LINK_PROGRAM_FAILURE, 1);
  const cl_program second = runtime.linkMakes().kernel("k");
  int calls = 0;
  cl_int status = -1;
  EXPECT_EQ(link(countCalls, &calls, &status), second);
  EXPECT_EQ(status, CL_SUCCESS);
  EXPECT_EQ(calls, 1);
  EXPECT_THAT(
      runtime.transcript({"clLinkProgram"}),
      ElementsAre("clLinkProgram(context 1, [], \"-x\", [], null, &, &)",
                  "clLinkProgram(context 1, [], \"-x\", [], &, &, &)"));
}

TEST_F(Link, WarnsThatANotificationPreventsCollecting) {
  runtime.answer("clLinkProgram", CL_LINK_PROGRAM_FAILURE, 1);
  runtime.linkMakes().kernel("k").kernel("k_coarsed_g0S4");
  cl_device_id device = runtime.device();
  int calls = 0;
  ErrorCapture errors;
  cl_program program =
      cl().clLinkProgram(runtime.context(), 1, &device, nullptr, 0, nullptr,
                         countCalls, &calls, nullptr);
  EXPECT_EQ(errors.text(),
            "CV: Warning: user function is used when clLinkProgram is called "
            "which prevents Corvane from collecting coarse kernels.\n");
  EXPECT_EQ(kernelNames(cl(), program), "k;k_coarsed_g0S4");
}

TEST_F(Link, CollectsAfterTheSecondTryWithoutANotification) {
  runtime.answer("clLinkProgram", CL_LINK_PROGRAM_FAILURE, 1);
  runtime.linkMakes().kernel("k").kernel("k_coarsed_g0S4");
  EXPECT_EQ(kernelNames(cl(), link()), "k");
}

TEST_F(Link, ThatFailsTwiceReturnsTheSecondFailureWithoutAReport) {
  runtime.answer("clLinkProgram", CL_LINK_PROGRAM_FAILURE, 1);
  runtime.answer("clLinkProgram", CL_MAP_FAILURE, 2);
  cl_device_id device = runtime.device();
  cl_int status = 0;
  ErrorCapture errors;
  EXPECT_EQ(cl().clLinkProgram(runtime.context(), 1, &device, nullptr, 0,
                               nullptr, nullptr, nullptr, &status),
            nullptr);
  EXPECT_EQ(status, CL_MAP_FAILURE);
  EXPECT_EQ(errors.text(), "");
  EXPECT_THAT(runtime.transcript({"clCreateKernelsInProgram"}), IsEmpty());
}

// A link that fails may return a program nevertheless.
TEST_F(Link, ThatFailsWithAProgramIsCollectedOnce) {
  runtime.linkMakes()
      .kernel("k")
      .kernel("k_coarsed_g0S4")
      .buildStatus(CL_LINK_PROGRAM_FAILURE);
  cl_int status = 0;
  cl_program program = link(nullptr, nullptr, &status);
  EXPECT_EQ(status, CL_LINK_PROGRAM_FAILURE);
  EXPECT_EQ(kernelNames(cl(), program), "k");
  EXPECT_EQ(runtime.transcript({"clLinkProgram"}).size(), 1U);
}
