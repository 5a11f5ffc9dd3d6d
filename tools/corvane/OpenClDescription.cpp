// Loads the OpenCL loader, asks for platforms and devices, and runs a kernel on
// each device.

#include "tools/corvane/Library.h"
#include "tools/corvane/OpenClProbe.h"

#include "llvm/Support/FileSystem.h"
#include "llvm/Support/JSON.h"
#include "llvm/Support/raw_ostream.h"

#include <CL/cl.h>

#include <algorithm>

using namespace corvane;
namespace json = llvm::json;

// A driver that hangs must not make the examination hang.
static constexpr unsigned mostSeconds = 120;

static constexpr cl_uint mostPlatforms = 64;
static constexpr cl_uint mostDevices = 256;

namespace {

/// The calls that are made, found by their names.
class Calls {
public:
  explicit Calls(void *loaded) : library(loaded) {}

  /// Null if the loader does not have it.
  template <typename Function> Function find(const char *name) const {
    return reinterpret_cast<Function>(symbolIn(library, name));
  }

private:
  void *library;
};

#define CALL(name) calls.find<decltype(&::name)>(#name)

class Description {
public:
  Description(const Calls &loader, llvm::raw_ostream &stream)
      : calls(loader), out(stream) {}

  void describe();

private:
  void tell(json::Object line) {
    out << json::Value(std::move(line)) << '\n';
    out.flush();
  }
  void describe(cl_platform_id platform);
  void describe(const std::string &platform, cl_device_id device);
  std::string runKernel(cl_device_id device);
  std::string launch(cl_context context, cl_device_id device);

  const Calls calls;
  llvm::raw_ostream &out;
};

/// Releases an object of OpenCL.
template <typename Handle> class Held {
public:
  Held(Handle object, cl_int(CL_API_CALL *releasedBy)(Handle))
      : handle(object), release(releasedBy) {}
  ~Held() {
    if (handle && release)
      (void)release(handle);
  }
  Held(const Held &) = delete;
  Held &operator=(const Held &) = delete;
  Handle get() const { return handle; }

private:
  Handle handle;
  cl_int(CL_API_CALL *release)(Handle);
};

} // namespace

template <typename Ask> static std::string textFrom(Ask ask) {
  std::size_t size = 0;
  if (ask(0, nullptr, &size) != CL_SUCCESS || size == 0 || size > 65536)
    return {};
  std::string text(size, '\0');
  if (ask(size, text.data(), nullptr) != CL_SUCCESS)
    return {};
  return json::fixUTF8(llvm::StringRef(text.c_str()));
}

std::string Description::launch(cl_context context, cl_device_id device) {
  static const char *const source =
      "kernel void one(global int *a) { a[get_global_id(0)] = 1; }";
  static const char *text = source;
  cl_int status = CL_SUCCESS;
  const Held<cl_command_queue> queue(
      CALL(clCreateCommandQueue)(context, device, CL_QUEUE_PROFILING_ENABLE,
                                 &status),
      CALL(clReleaseCommandQueue));
  if (!queue.get())
    return "no queue with profiling could be made";
  const Held<cl_program> program(
      CALL(clCreateProgramWithSource)(context, 1, &text, nullptr, &status),
      CALL(clReleaseProgram));
  if (!program.get() || CALL(clBuildProgram)(program.get(), 1, &device, "",
                                             nullptr, nullptr) != CL_SUCCESS)
    return "a program could not be built from source";
  const Held<cl_kernel> kernel(
      CALL(clCreateKernel)(program.get(), "one", &status),
      CALL(clReleaseKernel));
  const Held<cl_mem> buffer(
      CALL(clCreateBuffer)(context, CL_MEM_READ_WRITE, 256, nullptr, &status),
      CALL(clReleaseMemObject));
  if (!kernel.get() || !buffer.get())
    return "a kernel or a buffer could not be made";
  cl_mem memory = buffer.get();
  cl_event made = nullptr;
  const std::size_t size = 64;
  (void)CALL(clSetKernelArg)(kernel.get(), 0, sizeof memory, &memory);
  status = CALL(clEnqueueNDRangeKernel)(queue.get(), kernel.get(), 1, nullptr,
                                        &size, nullptr, 0, nullptr, &made);
  const Held<cl_event> event(made, CALL(clReleaseEvent));
  if (status != CL_SUCCESS || CALL(clFinish)(queue.get()) != CL_SUCCESS)
    return "a kernel could not be run";
  cl_ulong begin = 0, end = 0;
  const auto profile = CALL(clGetEventProfilingInfo);
  if (profile(event.get(), CL_PROFILING_COMMAND_START, sizeof begin, &begin,
              nullptr) != CL_SUCCESS ||
      profile(event.get(), CL_PROFILING_COMMAND_END, sizeof end, &end,
              nullptr) != CL_SUCCESS ||
      end < begin || end == 0)
    return "the runtime tells no times of a kernel";
  return {};
}

std::string Description::runKernel(cl_device_id device) {
  for (const char *name :
       {"clCreateContext", "clReleaseContext", "clCreateCommandQueue",
        "clReleaseCommandQueue", "clCreateProgramWithSource",
        "clReleaseProgram", "clBuildProgram", "clCreateKernel",
        "clReleaseKernel", "clCreateBuffer", "clReleaseMemObject",
        "clSetKernelArg", "clEnqueueNDRangeKernel", "clFinish",
        "clGetEventProfilingInfo", "clReleaseEvent"})
    if (!calls.find<void (*)()>(name))
      return std::string("the loader has no ") + name;
  cl_int status = CL_SUCCESS;
  const Held<cl_context> context(
      CALL(clCreateContext)(nullptr, 1, &device, nullptr, nullptr, &status),
      CALL(clReleaseContext));
  return context.get() ? launch(context.get(), device)
                       : "no context could be made";
}

void Description::describe(const std::string &platform, cl_device_id device) {
  const auto ask = CALL(clGetDeviceInfo);
  const auto text = [&](cl_device_info what) {
    return textFrom([&](std::size_t size, void *place, std::size_t *needed) {
      return ask(device, what, size, place, needed);
    });
  };
  cl_bool compiler = CL_FALSE;
  (void)ask(device, CL_DEVICE_COMPILER_AVAILABLE, sizeof compiler, &compiler,
            nullptr);
  const std::string name = text(CL_DEVICE_NAME);
  tell(json::Object{{"at", "device " + name}});
  const std::string problem =
      compiler ? runKernel(device)
               : "it builds no programs from source, only from binaries";
  tell(json::Object{{"platform", platform},
                    {"device", name},
                    {"vendor", text(CL_DEVICE_VENDOR)},
                    {"driver", text(CL_DRIVER_VERSION)},
                    {"compiler", compiler != CL_FALSE},
                    {"problem", problem}});
}

void Description::describe(cl_platform_id platform) {
  const auto ask = CALL(clGetPlatformInfo);
  const auto getDevices = CALL(clGetDeviceIDs);
  if (!ask || !getDevices || !CALL(clGetDeviceInfo))
    return;
  const auto text = [&](cl_platform_info what) {
    return textFrom([&](std::size_t size, void *place, std::size_t *needed) {
      return ask(platform, what, size, place, needed);
    });
  };
  const std::string name = text(CL_PLATFORM_NAME);
  tell(json::Object{{"platformName", name + ", " + text(CL_PLATFORM_VERSION)}});
  std::vector<cl_device_id> devices(mostDevices);
  cl_uint count = 0;
  if (getDevices(platform, CL_DEVICE_TYPE_ALL, mostDevices, devices.data(),
                 &count) != CL_SUCCESS)
    return;
  devices.resize(std::min(count, mostDevices));
  for (cl_device_id device : devices)
    describe(name, device);
}

void Description::describe() {
  const auto getPlatforms = CALL(clGetPlatformIDs);
  std::vector<cl_platform_id> platforms(mostPlatforms);
  cl_uint count = 0;
  if (!getPlatforms ||
      getPlatforms(mostPlatforms, platforms.data(), &count) != CL_SUCCESS)
    return;
  platforms.resize(std::min(count, mostPlatforms));
  for (cl_platform_id platform : platforms)
    if (platform)
      describe(platform);
}

// As the loaders of Linux distributions and of Khronos tell it themselves.
static std::string versionOf(const Calls &calls) {
  using GetInfo =
      cl_int(CL_API_CALL *)(cl_uint, std::size_t, void *, std::size_t *);
  const char *const name = "clGetICDLoaderInfoOCLICD";
  auto ask = calls.find<GetInfo>(name);
  if (const auto getAddress = CALL(clGetExtensionFunctionAddress);
      !ask && getAddress)
    ask = reinterpret_cast<GetInfo>(getAddress(name));
  if (!ask)
    return {};
  constexpr cl_uint versionNumber = 2, loaderName = 3;
  const auto text = [&](cl_uint what) {
    return textFrom([&](std::size_t size, void *place, std::size_t *needed) {
      return ask(what, size, place, needed);
    });
  };
  return text(loaderName) + " " + text(versionNumber);
}

int corvane::describeOpenCl(const ProbeWords &words) {
  endAfter(mostSeconds);
  std::error_code error;
  llvm::raw_fd_ostream out(words.output, error, llvm::sys::fs::OF_None);
  void *const loader = openLibrary(words.loader);
  if (error || !loader)
    return 0;
  const Calls calls(loader);
  const auto tell = [&out](json::Object line) {
    out << json::Value(std::move(line)) << '\n';
    out.flush();
  };
  tell(json::Object{
      {"loader", fileOfAddress(symbolIn(loader, "clGetPlatformIDs"))},
      {"version", versionOf(calls)}});
  // The first call has the loader load its layers.
  tell(json::Object{{"at", "the search for platforms"}});
  cl_uint count = 0;
  if (const auto getPlatforms = CALL(clGetPlatformIDs))
    (void)getPlatforms(0, nullptr, &count);
  tell(json::Object{{"takesLayers", isLoaded(words.layer)},
                    {"agentStarted", isLoaded(words.agent)},
                    {"platforms", std::int64_t(count)}});
  Description(calls, out).describe();
  tell(json::Object{{"at", ""}});
  out.clear_error();
  return 0;
}
