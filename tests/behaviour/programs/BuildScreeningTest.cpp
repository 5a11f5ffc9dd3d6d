// Tests of builds whose logs say that variants spill registers.

#include "tests/behaviour/Calls.h"
#include "tests/support/ErrorCapture.h"
#include "tests/support/TempFolder.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include <cstdint>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::SizeIs;

namespace {
class BuildScreening : public testing::Test {
protected:
  std::size_t builds() const {
    return runtime.transcript({"clBuildProgram"}).size();
  }
  std::size_t logQueries() const {
    return runtime.transcript({"clGetProgramBuildInfo"}).size();
  }

  FakeRuntime runtime;
};

class TuningBuildScreening : public BuildScreening {
protected:
  TempFolder folder;
  LoadedAgent agent{runtime, {{"CORVANE_AUTOTUNE", folder.text()}}};
  const DispatchTable &cl = agent.table();
};
} // namespace

TEST_F(TuningBuildScreening, BuildsASecondTimeAndReturnsTheSecondStatus) {
  const cl_program program = runtime.addProgram()
                                 .log(spillLog)
                                 .kernel("k")
                                 .kernel("k_coarsed_g0S4")
                                 .thenBuilt()
                                 .buildStatus(CL_OUT_OF_RESOURCES);
  ErrorCapture errors;
  EXPECT_EQ(build(cl, program), CL_OUT_OF_RESOURCES);
  EXPECT_EQ(builds(), 2U);
  EXPECT_EQ(errors.text(), "QrlAgent:: 342: CL Error: CL_OUT_OF_RESOURCES\n");
}

TEST_F(TuningBuildScreening, CollectsFromTheSecondBuild) {
  const cl_program program = runtime.addProgram()
                                 .log(spillLog)
                                 .kernel("k")
                                 .kernel("k_coarsed_g0S4")
                                 .buildStatus(CL_BUILD_PROGRAM_FAILURE)
                                 .thenBuilt()
                                 .kernel("second");
  EXPECT_EQ(build(cl, program), CL_SUCCESS);
  EXPECT_EQ(kernelNames(cl, program), "second");
}

TEST_F(TuningBuildScreening, CollectsNothingWhenTheSecondBuildFails) {
  const cl_program program =
      runtime.addProgram().log(spillLog).thenBuilt().kernel("k").buildStatus(
          CL_OUT_OF_RESOURCES);
  build(cl, program);
  EXPECT_THAT(runtime.transcript({"clCreateKernelsInProgram"}), SizeIs(0));
}

TEST_F(TuningBuildScreening, GivesBothBuildsTheSameArguments) {
  const cl_program program = runtime.addProgram().log(spillLog);
  cl_device_id device = runtime.device();
  int data = 0;
  const auto notify = [](cl_program, void *userData) {
    ++*static_cast<int *>(userData);
  };
  cl.clBuildProgram(program, 1, &device, "-O3", notify, &data);
  const std::string call =
      "clBuildProgram(program 1, [device 1], \"-O3\", &, &)";
  EXPECT_THAT(runtime.transcript({"clBuildProgram"}), ElementsAre(call, call));
  EXPECT_EQ(data, 2);
}

TEST_F(BuildScreening, WithoutAutotuningOnlyLeavesTheVariantsUnknown) {
  LoadedAgent agent(runtime);
  const cl_program program =
      runtime.addProgram().log(spillLog).kernel("k").kernel("k_coarsed_g0S4");
  EXPECT_EQ(build(agent.table(), program), CL_SUCCESS);
  EXPECT_EQ(builds(), 1U);
  EXPECT_EQ(kernelNames(agent.table(), program), "k;k_coarsed_g0S4");
}

TEST_F(TuningBuildScreening, ExaminesEveryDeviceAndOneIsEnough) {
  const cl_program program = runtime.addProgram()
                                 .devices(3)
                                 .log("fine", 1)
                                 .log(spillLog, 2)
                                 .log("fine", 3);
  build(cl, program);
  EXPECT_EQ(builds(), 2U);
  EXPECT_EQ(logQueries(), 6U);
}

TEST_F(TuningBuildScreening, TakesAProgramWithoutDevicesAsClean) {
  const cl_program program =
      runtime.addProgram().devices(0).log(spillLog).kernel("k");
  EXPECT_EQ(build(cl, program), CL_SUCCESS);
  EXPECT_EQ(builds(), 1U);
  EXPECT_EQ(kernelNames(cl, program), "k");
}

TEST_F(TuningBuildScreening, ScreensMoreThan32Devices) {
  const cl_program program = runtime.addProgram().devices(40).log(spillLog, 40);
  build(cl, program);
  EXPECT_EQ(builds(), 2U);
  EXPECT_EQ(logQueries(), 39 + 2U);
}

TEST_F(TuningBuildScreening, ScreensMoreThan32DevicesOfTheApplications) {
  const cl_program program = runtime.addProgram().log(spillLog, 40);
  std::vector<cl_device_id> devices;
  for (unsigned number = 1; number <= 40; ++number)
    devices.push_back(runtime.device(number));
  cl.clBuildProgram(program, 40, devices.data(), nullptr, nullptr, nullptr);
  EXPECT_EQ(builds(), 2U);
}

TEST_F(TuningBuildScreening, DoesNotReadALogThatIsEmpty) {
  build(cl, runtime.addProgram().log(""));
  EXPECT_EQ(logQueries(), 1U);
}

TEST_F(TuningBuildScreening, TakesAListOfDevicesThatCannotBeReadAsEmpty) {
  // The first call asks for the number of devices, the second for the list.
  for (const std::size_t failing : {1, 2}) {
    const cl_program program = runtime.addProgram().log(spillLog).kernel("k");
    runtime.forgetTranscript();
    runtime.answer("clGetProgramInfo", CL_OUT_OF_RESOURCES, failing);
    EXPECT_EQ(build(cl, program), CL_SUCCESS);
    EXPECT_EQ(builds(), 1U);
    EXPECT_EQ(logQueries(), 0U);
    EXPECT_EQ(kernelNames(cl, program), "k");
  }
}

TEST_F(TuningBuildScreening, IsNotAlarmedByALogThatCannotBeRead) {
  // The first call asks for the log's size, the second for its text.
  for (const std::size_t failing : {1, 2}) {
    const cl_program program = runtime.addProgram().log(spillLog).kernel("k");
    runtime.forgetTranscript();
    runtime.answer("clGetProgramBuildInfo", CL_OUT_OF_RESOURCES, failing);
    EXPECT_EQ(build(cl, program), CL_SUCCESS);
    EXPECT_EQ(builds(), 1U);
    EXPECT_EQ(kernelNames(cl, program), "k");
  }
}

TEST_F(TuningBuildScreening, SurvivesFalseDeviceCounts) {
  const cl_program program = runtime.addProgram().devices(2).log("fine");
  for (const cl_uint claimed : {0U, 1U, 3U, 100000U, 0xFFFFFFFFU}) {
    runtime.lies().deviceCount = claimed;
    EXPECT_EQ(build(cl, program), CL_SUCCESS) << claimed;
  }
}

TEST_F(TuningBuildScreening, SurvivesFalseLogSizes) {
  const cl_program program = runtime.addProgram().log("a log of some words");
  const std::size_t most = SIZE_MAX;
  for (const std::size_t claimed :
       {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{100000},
        most / 2, most - 1, most}) {
    runtime.lies().buildLogSize = claimed;
    EXPECT_EQ(build(cl, program), CL_SUCCESS) << claimed;
  }
}

TEST_F(TuningBuildScreening, ReadsALogLongerThanAnyLine) {
  const std::string filler(1 << 20, 'x');
  const cl_program program = runtime.addProgram().log(filler + "\n" + spillLog);
  build(cl, program);
  EXPECT_EQ(builds(), 2U);
}
