// The calls of an application that is measured.

#include "tests/behaviour/launch/MeasuredApplication.h"

#include "agent/Environment.h"

#include "gtest/gtest.h"

#include <filesystem>

using namespace corvane;
using namespace corvane::test;

void corvane::test::square(const Launch &launch) {
  for (std::size_t i = 0; i != launch.buffer(0).size(); ++i)
    launch.buffer(1)[i] =
        static_cast<unsigned char>(launch.buffer(0)[i] * launch.buffer(0)[i]);
}

static Variables with(Variables variables, const std::string &folder) {
  variables.emplace_back(variable::tune, folder);
  return variables;
}

MeasuredApplication::MeasuredApplication(
    const Variables &more, const std::function<void(DispatchTable &)> &prepare)
    : Application(with(more, folder.text()), prepare),
      body(std::make_shared<KernelBody>(square)) {
  program.source("kernel void k(global uchar *in, global uchar *out) {}");
  program.kernel("k", 2, [does = body](const Launch &run) { (*does)(run); });
  runtime.takes("k", {10000});
}

MeasuredApplication::~MeasuredApplication() {
  // The tuning thread must not meet a runtime that is gone.
  agent.unload();
  if (kernel)
    release(kernel);
}

void MeasuredApplication::addVariant(const std::string &spec, KernelBody does) {
  program.kernel("k_coarsed_" + spec, 2, std::move(does));
}

static cl_mem makeBuffer(const DispatchTable &cl, FakeRuntime &runtime,
                         const std::vector<unsigned char> &bytes) {
  cl_mem buffer = cl.clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE,
                                    bytes.size(), nullptr, nullptr);
  runtime.setBytes(buffer, bytes);
  return buffer;
}

void MeasuredApplication::start() {
  input = makeBuffer(cl, runtime, {1, 2, 3, 4});
  output = makeBuffer(cl, runtime, {0, 0, 0, 0});
  kernel = create("k");
  set(kernel, 0, input);
  set(kernel, 1, output);
}

cl_int MeasuredApplication::run(std::size_t global) {
  cl_event event = nullptr;
  EXPECT_EQ(launch(kernel, {global}, {4}, &event), CL_SUCCESS);
  cl.clWaitForEvents(1, &event);
  cl_int status = CL_SUBMITTED;
  cl.clGetEventInfo(event, CL_EVENT_COMMAND_EXECUTION_STATUS, sizeof status,
                    &status, nullptr);
  cl.clReleaseEvent(event);
  return status;
}

std::vector<std::string> MeasuredApplication::launched() const {
  const std::string start = "clEnqueueNDRangeKernel(queue 1, kernel ";
  std::vector<std::string> kernels;
  for (const std::string &call : launches())
    if (call.compare(0, start.size(), start) == 0)
      kernels.push_back(call.substr(start.size(), call.find(',', start.size()) -
                                                      start.size()));
  return kernels;
}

std::string MeasuredApplication::kernelOfNextRun(std::size_t global) {
  runtime.forgetTranscript();
  run(global);
  const std::vector<std::string> kernels = launched();
  return kernels.size() == 1 ? kernels.front()
                             : std::to_string(kernels.size()) + " launches";
}

std::string MeasuredApplication::runFolder() const {
  const std::filesystem::path runs = folder.path() / "runs";
  if (!std::filesystem::exists(runs))
    return {};
  return std::filesystem::directory_iterator(runs)->path().string();
}

RunRecord MeasuredApplication::record(bool ended) {
  if (ended)
    agent.unload();
  RunRecord run = readRun(readBytes(runFolder() + "/run.jsonl"));
  EXPECT_EQ(run.problemCount, 0U);
  return run;
}
