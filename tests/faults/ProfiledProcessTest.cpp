// A process that reads and applies a profile while it is refused memory: each
// call is made again, and every launch runs once.

#include "agent/Environment.h"
#include "results/profile/ProfileFile.h"
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

#include <cstdio>
#include <functional>
#include <new>
#include <string>
#include <vector>

using namespace corvane;
using namespace corvane::test;

namespace {
// Entries of many sizes, so that all lists grow more than once.
Profile manyEntries() {
  std::vector<std::size_t> sizes;
  for (std::size_t size = 64; size != 64 * 20; size += 64)
    sizes.push_back(size);
  return profileOf(sizes, "g0S2");
}

/// From the load to the unload, each call made again if it throws.
class ProfiledProcess {
public:
  explicit ProfiledProcess(const TempFolder &folder)
      : profile(variable::profile, folder.text()) {
    program.source(profiledSource)
        .kernel("k", 1, incrementAll)
        .kernel("k_coarsed_g0S2", 1, incrementAll);
  }

  void tell() {
    again([this] { return boundary.load(); });
    again([this] { return build(cl(), program); });
    again([this] {
      buffer = createBuffer(runtime, cl());
      return buffer ? CL_SUCCESS : CL_OUT_OF_RESOURCES;
    });
    again([this] {
      kernel = cl().clCreateKernel(program, "k", nullptr);
      return kernel ? CL_SUCCESS : CL_OUT_OF_RESOURCES;
    });
    again([this] {
      return cl().clSetKernelArg(kernel, 0, sizeof buffer, &buffer);
    });
    const std::size_t global = 64;
    again([&] {
      return cl().clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                         &global, nullptr, 0, nullptr, nullptr);
    });
    EXPECT_EQ(unsigned{runtime.bytes(buffer).front()}, 1U);
    again([this] { return cl().clReleaseKernel(kernel); });
    again([this] { return cl().clReleaseMemObject(buffer); });
    again([this] {
      boundary.unload();
      return CL_SUCCESS;
    });
  }

  unsigned exceptions = 0;
  bool ranVariant() {
    return !runtime.transcript({"clEnqueueNDRangeKernel"}).empty() &&
           runtime.transcript({"clEnqueueNDRangeKernel"})
                   .front()
                   .find("k_coarsed_g0S2") != std::string::npos;
  }

private:
  const DispatchTable &cl() const { return boundary.table(); }

  void again(const std::function<cl_int()> &call) {
    for (int i = 0; i != 2; ++i) {
      try {
        EXPECT_EQ(call(), CL_SUCCESS);
        return;
      } catch (const std::bad_alloc &) {
        ++exceptions;
      }
    }
    ADD_FAILURE() << "one refused request made two calls throw";
  }

  FakeRuntime runtime;
  const EnvGuard profile;
  const EnvGuard summary{variable::summary, "1"};
  AgentBoundary boundary{runtime};
  ProgramScript program = runtime.addProgram();
  cl_mem buffer = nullptr;
  cl_kernel kernel = nullptr;
};
} // namespace

TEST(ProfiledProcess, GoesOnWhateverMemoryIsRefused) {
  const TempFolder folder{folderInMemory()};
  ASSERT_TRUE(folder.write("profile.json", profileText(manyEntries())));
  {
    const ErrorCapture errors;
    ProfiledProcess usual(folder);
    usual.tell();
    EXPECT_TRUE(usual.ranVariant());
  }
  unsigned exceptions = 0;
  std::size_t n = 1;
  for (bool refused = true; refused && !HasFailure(); ++n) {
    SCOPED_TRACE("request " + std::to_string(n) + " is refused");
    const ErrorCapture errors;
    ProfiledProcess process(folder);
    AgentMemory::refuse(n);
    process.tell();
    refused = AgentMemory::refuseNothing();
    exceptions += process.exceptions;
  }
  std::printf("[ faults   ] %zu: each request for memory of a process with a "
              "profile refused\n",
              n - 2);
  EXPECT_GT(exceptions, 200U);
}
