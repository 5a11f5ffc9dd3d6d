// Builds, creates kernels and buffers, and launches as applications do.

#include "tests/behaviour/launch/Application.h"

#include "agent/Environment.h"

#include "gtest/gtest.h"

#include <algorithm>

using namespace corvane;
using namespace corvane::test;

static FakeRuntime &
prepared(FakeRuntime &runtime,
         const std::function<void(DispatchTable &)> &prepare) {
  if (prepare)
    prepare(runtime.ownTable());
  return runtime;
}

Application::Application(const Variables &variables,
                         const std::function<void(DispatchTable &)> &prepare)
    : agent(prepared(runtime, prepare), variables) {}

void Application::build() {
  if (built)
    return;
  built = true;
  EXPECT_EQ(cl.clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr),
            CL_SUCCESS);
}

cl_kernel Application::create(const std::string &name) {
  build();
  cl_int status = CL_INVALID_VALUE;
  cl_kernel kernel = cl.clCreateKernel(program, name.c_str(), &status);
  EXPECT_EQ(status, CL_SUCCESS);
  return kernel;
}

cl_int Application::launch(cl_kernel kernel, const SizeList &global,
                           const SizeList &local, cl_event *event,
                           const std::vector<cl_event> &waitList) {
  return cl.clEnqueueNDRangeKernel(
      runtime.queue(), kernel, static_cast<cl_uint>(global.size()), nullptr,
      global.data(), local.empty() ? nullptr : local.data(),
      static_cast<cl_uint>(waitList.size()),
      waitList.empty() ? nullptr : waitList.data(), event);
}

std::string corvane::test::plainLaunch(const std::string &kernel,
                                       const std::string &global,
                                       const std::string &local) {
  const char dimensions =
      static_cast<char>('1' + std::count(global.begin(), global.end(), ','));
  return "clEnqueueNDRangeKernel(queue 1, kernel " + kernel + ", " +
         dimensions + ", null, " + global + ", " + local + ", [], null)";
}

static Variables with(Variables variables, const std::string &folder) {
  variables.emplace_back(variable::autotune, folder);
  variables.emplace_back(variable::installLocation, folder);
  return variables;
}

TuningApplication::TuningApplication(
    const Variables &more, const std::function<void(DispatchTable &)> &prepare)
    : Application(with(more, folder.text()), prepare) {}

cl_mem TuningApplication::createBuffer(const std::vector<unsigned char> &bytes,
                                       cl_mem_flags flags) {
  cl_int status = CL_INVALID_VALUE;
  cl_mem buffer = cl.clCreateBuffer(runtime.context(), flags, bytes.size(),
                                    nullptr, &status);
  EXPECT_EQ(status, CL_SUCCESS);
  runtime.setBytes(buffer, bytes);
  return buffer;
}

std::vector<std::string> TuningApplication::chain() const {
  return runtime.transcript({"clEnqueueReadBuffer", "clEnqueueWriteBuffer",
                             "clEnqueueNDRangeKernel", "clSetEventCallback",
                             "clReleaseEvent", "clFlush"});
}
