// An application of one program that uses the agent.

#pragma once

#include "tests/support/FakeRuntime.h"
#include "tests/support/LoadedAgent.h"
#include "tests/support/TempFolder.h"

#include <CL/cl.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace corvane::test {

using Variables = std::vector<std::pair<std::string, std::string>>;
using SizeList = std::vector<std::size_t>;

/// Makes the calls that applications make, through the table that the agent has
/// set. Describe the program first; the first kernel builds it.
struct Application {
  /// \p prepare may change the runtime's table before the agent gets it.
  explicit Application(
      const Variables &variables = {},
      const std::function<void(DispatchTable &)> &prepare = {});

  /// Builds the program, the first time.
  void build();
  cl_kernel create(const std::string &name);
  cl_int release(cl_kernel kernel) { return cl.clReleaseKernel(kernel); }

  template <typename Value>
  cl_int set(cl_kernel kernel, cl_uint index, const Value &value) {
    return cl.clSetKernelArg(kernel, index, sizeof value, &value);
  }

  /// Launches on the runtime's queue, over as many dimensions as there are
  /// global sizes. Without local sizes the runtime is to choose.
  cl_int launch(cl_kernel kernel, const SizeList &global,
                const SizeList &local = {}, cl_event *event = nullptr,
                const std::vector<cl_event> &waitList = {});

  /// What was launched since the transcript was forgotten, in words.
  std::vector<std::string> launches() const {
    return runtime.transcript({"clEnqueueNDRangeKernel"});
  }

  FakeRuntime runtime;
  LoadedAgent agent;
  const DispatchTable &cl = agent.table();
  ProgramScript program = runtime.addProgram();

private:
  bool built = false;
};

/// How the transcript shows a launch that was not changed.
std::string plainLaunch(const std::string &kernel, const std::string &global,
                        const std::string &local = "null");

/// Where the results of a test go.
struct OutputFolder {
  TempFolder folder;
};

/// An application whose launches the agent autotunes.
struct TuningApplication : OutputFolder, Application {
  explicit TuningApplication(
      const Variables &more = {},
      const std::function<void(DispatchTable &)> &prepare = {});

  /// A buffer of the application's with these bytes.
  cl_mem createBuffer(const std::vector<unsigned char> &bytes,
                      cl_mem_flags flags = CL_MEM_READ_WRITE);

  /// The raw timing log, byte for byte, and its first line.
  std::string log() const { return folder.read(logName); }
  static constexpr const char *header =
      "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
      "coarsed_kernel,time\n";
  static constexpr const char *logName = ".auto.csv";

  /// The transfers, launches and event calls of autotuned launches, in words.
  std::vector<std::string> chain() const;
};

} // namespace corvane::test
