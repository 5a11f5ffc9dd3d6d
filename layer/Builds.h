// Steps that builds and links have in common.

#pragma once

#include "layer/Programs.h"

#include <CL/cl.h>

#include <chrono>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace corvane::layer {

/// Tries to build a program until its kernels are gone. A program that has
/// kernels cannot be built. The runtime still has one for a moment after its
/// launch is over, and longer when the agent looks at the launch first: without
/// the agent the build would have worked, and so it is tried again. Where the
/// application itself has kernels, it is told so up to 100 ms later.
template <typename Build> cl_int buildWithoutKernels(Build tryToBuild) {
  cl_int status = tryToBuild();
  for (int tries = 0; status == CL_INVALID_OPERATION && tries != 100; ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    status = tryToBuild();
  }
  return status;
}

/// Has the agent forget earlier builds of the program that it builds in this
/// call; what it collects next would be added to them.
void forgetBuildsBeforeCollection(cl_program program);

/// While it lives, its program counts as being built: from before the runtime
/// builds it until the agent has seen it.
class BeingBuilt {
public:
  explicit BeingBuilt(cl_program builtProgram) : program(builtProgram) {
    programs().edit(program, [](ProgramInfo &info) { ++info.builds; });
  }
  ~BeingBuilt() {
    programs().edit(program, [](ProgramInfo &info) {
      if (info.builds != 0)
        --info.builds;
    });
  }
  BeingBuilt(const BeingBuilt &) = delete;
  BeingBuilt &operator=(const BeingBuilt &) = delete;

private:
  const cl_program program;
};

/// Copies of arguments, for a build or link that ends after the application's
/// call.
struct LateBuild {
  LateBuild(cl_uint count, const cl_device_id *list, const char *text)
      : hasDevices(list != nullptr), devices(list, list ? list + count : list),
        hasOptions(text != nullptr), options(text ? text : "") {}

  const cl_device_id *deviceList() const {
    return hasDevices ? devices.data() : nullptr;
  }
  cl_uint deviceCount() const { return static_cast<cl_uint>(devices.size()); }
  const char *optionText() const {
    return hasOptions ? options.c_str() : nullptr;
  }

  bool hasDevices;
  std::vector<cl_device_id> devices;
  bool hasOptions;
  std::string options;
};

/// Runs look(), in which the agent sees a program that the application has had
/// for a while, and may have released. It runs on a thread of the runtime's, or
/// on one that is building already.
template <typename Look> void lookLate(cl_program program, Look look) noexcept {
  try {
    if (programs().has(program))
      look();
    // If it was released meanwhile, the agent had no record to drop.
    if (!programs().has(program))
      forgetBuilds(program);
  } catch (const std::bad_alloc &) {
    // Better to lose the variants than the process.
  }
}

} // namespace corvane::layer
