// Launches that are refused memory while their kernels are to be measured: the
// application's run is made once, or not at all.

#include "agent/Environment.h"
#include "tests/behaviour/Calls.h"
#include "tests/faults/ProfiledKernel.h"
#include "tests/support/AgentBoundary.h"
#include "tests/support/AgentMemory.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/ErrorCapture.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

#include <CL/cl.h>

#include <new>
#include <vector>

using namespace corvane;
using namespace corvane::test;

namespace {
/// A process that tunes a kernel with a variant; both add 1 to each byte.
class MeasuredProcess {
public:
  MeasuredProcess() {
    program.source(profiledSource)
        .kernel("k", 1, incrementAll)
        .kernel("k_coarsed_g0S2", 1, incrementAll);
    boundary.load();
    EXPECT_EQ(build(cl(), program), CL_SUCCESS);
    buffer = createBuffer(runtime, cl());
    kernel = cl().clCreateKernel(program, "k", nullptr);
    cl().clSetKernelArg(kernel, 0, sizeof buffer, &buffer);
  }
  ~MeasuredProcess() {
    boundary.unload();
    cl().clReleaseKernel(kernel);
    cl().clReleaseMemObject(buffer);
  }
  MeasuredProcess(const MeasuredProcess &) = delete;
  MeasuredProcess &operator=(const MeasuredProcess &) = delete;

  /// Launches and waits for the end of the run. Throws nothing of its own.
  void launch() {
    const std::size_t global = 64;
    cl_event event = nullptr;
    EXPECT_EQ(cl().clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                          &global, nullptr, 0, nullptr, &event),
              CL_SUCCESS);
    cl().clWaitForEvents(1, &event);
    cl().clReleaseEvent(event);
  }

  /// How often the kernels have worked for the application.
  unsigned runs() { return runtime.bytes(buffer).front(); }

private:
  const DispatchTable &cl() const { return boundary.table(); }

  FakeRuntime runtime;
  const TempFolder folder{folderInMemory()};
  const EnvGuard tuning{variable::tune, folder.text()};
  AgentBoundary boundary{runtime};
  ProgramScript program = runtime.addProgram();
  cl_mem buffer = nullptr;
  cl_kernel kernel = nullptr;
};
} // namespace

TEST(MeasuredLaunch, IsMadeOnceOrNotAtAllWhateverMemoryIsRefused) {
  std::size_t exceptions = 0;
  bool refused = true;
  for (std::size_t n = 1; refused && !testing::Test::HasFailure(); ++n) {
    SCOPED_TRACE("request " + std::to_string(n) + " is refused");
    const ErrorCapture errors;

    MeasuredProcess process;
    unsigned made = 0;
    AgentMemory::refuse(n);
    try {
      process.launch();
      ++made;
    } catch (const std::bad_alloc &) {
      ++exceptions;
    }
    refused = AgentMemory::refuseNothing();
    EXPECT_EQ(process.runs(), made);
    process.launch();
    EXPECT_EQ(process.runs(), made + 1);
  }
  EXPECT_GT(exceptions, 50U);
}
