// Tests of the notifications of builds and links, by runtimes that behave
// otherwise than PoCL.

#include "tests/system/layer/LayeredRuntime.h"

#include <deque>
#include <functional>
#include <thread>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {
/// A notification of the application, and how many kernels it found then.
struct Heard {
  unsigned times = 0;
  cl_program program = nullptr;
  std::string kernels;
};

class LayeredNotifications : public LayeredRuntime {
protected:
  static void CL_CALLBACK listen(cl_program program, void *userData) {
    auto &self = *static_cast<LayeredNotifications *>(userData);
    ++self.heard.times;
    self.heard.program = program;
    self.heard.kernels = self.kernelNames(program);
  }

  static void CL_CALLBACK count(cl_program, void *heard) {
    ++static_cast<Heard *>(heard)->times;
  }

  cl_int buildNotified(cl_program program) {
    return cl().clBuildProgram(program, 0, nullptr, "", listen, this);
  }

  cl_program linkNotified(cl_int *status) {
    cl_device_id device = runtime.device();
    return cl().clLinkProgram(runtime.context(), 1, &device, "", 0, nullptr,
                              listen, this, status);
  }

  Heard heard;
};

using Notify = void(CL_CALLBACK *)(cl_program, void *);

/// A runtime that returns at once from a build or link with a notification. It
/// builds and notifies when the test says, on its only thread.
class LayeredLateRuntime : public LayeredNotifications {
protected:
  LayeredLateRuntime() {
    real = runtime.ownTable();
    runtime.ownTable().clBuildProgram = buildLater;
    runtime.ownTable().clLinkProgram = linkNow;
    runtime.ownTable().clGetProgramBuildInfo = tellBuilt;
  }
  ~LayeredLateRuntime() override { EXPECT_THAT(work, IsEmpty()); }

  /// Runs the tasks of the runtime's thread, oldest first, also those that are
  /// added meanwhile.
  static void runCallbackThread() {
    std::thread([] {
      for (; !work.empty(); work.pop_front())
        work.front()();
    }).join();
  }

  cl_build_status buildStatus(cl_program program) {
    cl_build_status status = CL_BUILD_NONE;
    EXPECT_EQ(cl().clGetProgramBuildInfo(program, runtime.device(),
                                         CL_PROGRAM_BUILD_STATUS, sizeof status,
                                         &status, nullptr),
              CL_SUCCESS);
    return status;
  }

  static inline DispatchTable real;
  static inline std::deque<std::function<void()>> work;

private:
  // The program exists until the build is over, although it may be released.
  static cl_int CL_API_CALL buildLater(cl_program program, cl_uint count,
                                       const cl_device_id *devices,
                                       const char *options, Notify notify,
                                       void *userData) {
    if (!notify)
      return real.clBuildProgram(program, count, devices, options, notify,
                                 userData);
    real.clRetainProgram(program);
    work.emplace_back([=] {
      real.clBuildProgram(program, 0, nullptr, "", nullptr, nullptr);
      notify(program, userData);
      real.clReleaseProgram(program);
    });
    return CL_SUCCESS;
  }

  static cl_int CL_API_CALL tellBuilt(cl_program program, cl_device_id device,
                                      cl_program_build_info name, size_t size,
                                      void *value, size_t *length) {
    if (name != CL_PROGRAM_BUILD_STATUS)
      return real.clGetProgramBuildInfo(program, device, name, size, value,
                                        length);
    *static_cast<cl_build_status *>(value) = CL_BUILD_SUCCESS;
    return CL_SUCCESS;
  }

  // The program is linked at once; only its notification comes later.
  static cl_program CL_API_CALL linkNow(cl_context context, cl_uint count,
                                        const cl_device_id *devices,
                                        const char *options, cl_uint inputCount,
                                        const cl_program *inputs, Notify notify,
                                        void *userData, cl_int *status) {
    cl_program program =
        real.clLinkProgram(context, count, devices, options, inputCount, inputs,
                           nullptr, nullptr, status);
    if (notify && program)
      work.emplace_back([=] { notify(program, userData); });
    return program;
  }
};
} // namespace

TEST_F(LayeredLateRuntime, HasBuiltWhenTheApplicationHearsOfIt) {
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  EXPECT_EQ(buildNotified(program), CL_SUCCESS);
  EXPECT_EQ(heard.times, 0u);
  runCallbackThread();
  EXPECT_EQ(heard.times, 1u);
  EXPECT_EQ(heard.program, program);
  EXPECT_EQ(heard.kernels, "k;other");
  EXPECT_THAT(createKernel(program, "k"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
}

// The agent has the runtime build once more when a log says that a variant
// spills.
TEST_F(LayeredLateRuntime, HasBuiltTwiceWhenTheApplicationHearsOfIt) {
  loadAutotuning();
  withVariant(runtime.sourceMakes())
      .log("calclCompile a b c k_coarsed_g0S4")
      .thenBuilt()
      .kernel("k")
      .kernel("k_coarsed_g0S2");
  EXPECT_EQ(buildNotified(createProgram()), CL_SUCCESS);
  runCallbackThread();
  EXPECT_EQ(runtime.transcript({"clBuildProgram"}).size(), 2u);
  EXPECT_EQ(heard.times, 1u);
  EXPECT_EQ(heard.kernels, "k");
}

TEST_F(LayeredLateRuntime, HasLinkedWhenTheApplicationHearsOfIt) {
  loadAutotuning();
  withVariant(runtime.linkMakes());
  cl_int status = -1;
  cl_program program = linkNotified(&status);
  EXPECT_EQ(status, CL_SUCCESS);
  EXPECT_EQ(heard.times, 0u);
  runCallbackThread();
  EXPECT_EQ(heard.times, 1u);
  EXPECT_EQ(heard.program, program);
  EXPECT_EQ(heard.kernels, "k;other");
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("program"), IsEmpty());
}

TEST_F(LayeredLateRuntime, IsStillBuildingUntilTheAgentHasSeenTheProgram) {
  withVariant(runtime.sourceMakes()).alreadyBuilt();
  cl_program program = createProgram();
  EXPECT_EQ(buildStatus(program), CL_BUILD_SUCCESS);
  EXPECT_EQ(buildNotified(program), CL_SUCCESS);
  EXPECT_EQ(buildStatus(program), CL_BUILD_IN_PROGRESS);
  runCallbackThread();
  EXPECT_EQ(buildStatus(program), CL_BUILD_SUCCESS);
}

TEST_F(LayeredLateRuntime, LetsTheApplicationBuildInACallback) {
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  work.emplace_back([&] { EXPECT_EQ(buildNotified(program), CL_SUCCESS); });
  runCallbackThread();
  EXPECT_EQ(heard.times, 1u);
  EXPECT_EQ(heard.kernels, "k;other");
}

TEST_F(LayeredLateRuntime, LetsTheApplicationLinkInACallback) {
  loadAutotuning();
  withVariant(runtime.linkMakes());
  cl_program program = nullptr;
  work.emplace_back([&] { program = linkNotified(nullptr); });
  runCallbackThread();
  EXPECT_EQ(heard.times, 1u);
  EXPECT_EQ(heard.program, program);
  EXPECT_EQ(heard.kernels, "k;other");
}

TEST_F(LayeredLateRuntime, LeavesNoRecordOfAProgramThatIsReleasedWhileBuilt) {
  runtime.recycleHandles();
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  EXPECT_EQ(cl().clBuildProgram(program, 0, nullptr, "", count, &heard),
            CL_SUCCESS);
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  runCallbackThread();
  EXPECT_EQ(heard.times, 1u);
  EXPECT_THAT(runtime.alive("program"), IsEmpty());

  withVariant(runtime.sourceMakes().alreadyBuilt());
  ASSERT_EQ(createProgram(), program);
  EXPECT_THAT(createKernel(program, "k"), ElementsAre("kernel k"));
}

TEST_F(LayeredLateRuntime, LeavesNoRecordOfAProgramThatIsReleasedWhileSeen) {
  runtime.recycleHandles();
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  EXPECT_EQ(cl().clBuildProgram(program, 0, nullptr, "", count, &heard),
            CL_SUCCESS);
  runtime.whenCalled("clCreateKernelsInProgram", [&] {
    EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  });
  runCallbackThread();
  runtime.whenCalled("clCreateKernelsInProgram", [] {});
  EXPECT_EQ(heard.times, 1u);
  EXPECT_THAT(runtime.alive("program"), IsEmpty());

  withVariant(runtime.sourceMakes().alreadyBuilt());
  ASSERT_EQ(createProgram(), program);
  EXPECT_THAT(createKernel(program, "k"), ElementsAre("kernel k"));
}

namespace {
/// A runtime that refuses a build and nevertheless notifies of it, later.
class LayeredContraryRuntime : public LayeredLateRuntime {
protected:
  LayeredContraryRuntime() { runtime.ownTable().clBuildProgram = refuse; }

private:
  static cl_int CL_API_CALL refuse(cl_program program, cl_uint,
                                   const cl_device_id *, const char *,
                                   Notify notify, void *userData) {
    work.emplace_back([=] { notify(program, userData); });
    return CL_INVALID_DEVICE;
  }
};
} // namespace

TEST_F(LayeredContraryRuntime, DoesNotReachTheApplicationOnceItHasRefused) {
  EXPECT_EQ(buildNotified(createProgram()), CL_INVALID_DEVICE);
  runCallbackThread();
  EXPECT_EQ(heard.times, 0u);
}

TEST_F(LayeredNotifications, ComeForABuildThatFails) {
  withVariant(runtime.sourceMakes()).buildStatus(CL_BUILD_PROGRAM_FAILURE);
  cl_program program = createProgram();
  testing::internal::CaptureStderr();
  EXPECT_EQ(buildNotified(program), CL_BUILD_PROGRAM_FAILURE);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "QrlAgent:: 342: CL Error: CL_BUILD_PROGRAM_FAILURE\n");
  EXPECT_EQ(heard.times, 1u);
}

// The agent has the runtime build once more when a log says that a variant
// spills.
TEST_F(LayeredNotifications, ComeOnceForABuildThatTookTwo) {
  loadAutotuning();
  withVariant(runtime.sourceMakes())
      .log("calclCompile a b c k_coarsed_g0S4")
      .thenBuilt()
      .kernel("k")
      .kernel("k_coarsed_g0S2");
  cl_program program = createProgram();
  EXPECT_EQ(buildNotified(program), CL_SUCCESS);
  EXPECT_EQ(runtime.transcript({"clBuildProgram"}).size(), 2u);
  EXPECT_EQ(heard.times, 1u);
  EXPECT_EQ(heard.kernels, "k");
  cl().clReleaseProgram(program);
  EXPECT_THAT(runtime.alive("program"), IsEmpty());
}

TEST_F(LayeredNotifications, ComeOnceForALinkThatTookTwo) {
  loadAutotuning();
  runtime.answer("clLinkProgram", CL_LINK_PROGRAM_FAILURE, 1);
  withVariant(runtime.linkMakes());
  cl_int status = -1;
  testing::internal::CaptureStderr();
  cl_program program = linkNotified(&status);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(runtime.transcript({"clLinkProgram"}).size(), 2u);
  EXPECT_EQ(status, CL_SUCCESS);
  EXPECT_EQ(heard.times, 1u);
  EXPECT_EQ(heard.program, program);
  EXPECT_EQ(heard.kernels, "k;other");
}

TEST_F(LayeredNotifications, DoNotComeForACallThatTheRuntimeRefuses) {
  loadAutotuning();
  runtime.answer("clLinkProgram", CL_INVALID_CONTEXT);
  cl_int status = 0;
  EXPECT_EQ(linkNotified(&status), nullptr);
  EXPECT_EQ(status, CL_INVALID_CONTEXT);
  runtime.answer("clBuildProgram", CL_INVALID_DEVICE);
  EXPECT_EQ(buildNotified(createProgram()), CL_INVALID_DEVICE);
  EXPECT_EQ(heard.times, 0u);
}

// A notification function may make OpenCL calls.
TEST_F(LayeredNotifications, MayBuildAndReleaseTheProgram) {
  static const cl_icd_dispatch *calls = nullptr;
  withVariant(runtime.sourceMakes());
  cl_program program = createProgram();
  calls = &cl();
  static unsigned times = 0;
  times = 0;
  const auto again = [](cl_program built, void *) {
    ++times;
    EXPECT_EQ(calls->clBuildProgram(built, 0, nullptr, "", nullptr, nullptr),
              CL_SUCCESS);
    EXPECT_EQ(calls->clReleaseProgram(built), CL_SUCCESS);
  };
  EXPECT_EQ(cl().clBuildProgram(program, 0, nullptr, "", again, nullptr),
            CL_SUCCESS);
  EXPECT_EQ(times, 1u);
  EXPECT_THAT(runtime.transcript({"clBuildProgram"}),
              ElementsAre("clBuildProgram(program 1, [], \"\", &, &)",
                          "clBuildProgram(program 1, [], \"\", null, null)"));
  EXPECT_THAT(runtime.alive("program"), IsEmpty());
}
