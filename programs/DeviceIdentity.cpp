// Asks the runtime about devices and queues.

#include "programs/DeviceIdentity.h"

#include "agent/RuntimeTable.h"
#include "programs/RuntimeText.h"

#include "llvm/Support/JSON.h"

#include <cstddef>

using namespace corvane;

// No driver has a longer text; a runtime that claims one is wrong.
static constexpr std::size_t mostTextBytes = std::size_t{1} << 16;

// As files have it, so that what was read from one compares equal.
static std::optional<std::string> textOf(cl_device_id device,
                                         cl_device_info what) {
  const auto text = readRuntimeText(
      mostTextBytes, [=](std::size_t capacity, void *place, std::size_t *size) {
        return runtime().clGetDeviceInfo(device, what, capacity, place, size);
      });
  if (!text)
    return std::nullopt;
  return llvm::json::fixUTF8(*text);
}

template <typename Value>
static std::optional<Value> valueOf(cl_device_id device, cl_device_info what) {
  return readRuntimeValue<Value>([=](std::size_t capacity, void *place) {
    return runtime().clGetDeviceInfo(device, what, capacity, place, nullptr);
  });
}

static const char *typeText(cl_device_type type) {
  if ((type & CL_DEVICE_TYPE_CPU) != 0)
    return "CPU";
  if ((type & CL_DEVICE_TYPE_GPU) != 0)
    return "GPU";
  if ((type & CL_DEVICE_TYPE_ACCELERATOR) != 0)
    return "accelerator";
  return (type & CL_DEVICE_TYPE_CUSTOM) != 0 ? "custom" : "other";
}

std::optional<DeviceIdentity> corvane::readDeviceIdentity(cl_device_id device) {
  if (!device || !runtime().clGetDeviceInfo)
    return std::nullopt;
  const auto name = textOf(device, CL_DEVICE_NAME);
  const auto vendor = textOf(device, CL_DEVICE_VENDOR);
  const auto driver = textOf(device, CL_DRIVER_VERSION);
  if (!name || !vendor || !driver)
    return std::nullopt;

  DeviceIdentity identity{*name, *vendor, *driver, {}, {}};
  identity.version = textOf(device, CL_DEVICE_VERSION).value_or("");
  identity.type =
      typeText(valueOf<cl_device_type>(device, CL_DEVICE_TYPE).value_or(0));
  identity.units =
      valueOf<cl_uint>(device, CL_DEVICE_MAX_COMPUTE_UNITS).value_or(0);
  identity.localMemory =
      valueOf<cl_ulong>(device, CL_DEVICE_LOCAL_MEM_SIZE).value_or(0);
  return identity;
}

cl_device_id corvane::deviceOfQueue(cl_command_queue queue) {
  cl_device_id device = nullptr;
  const auto ask = runtime().clGetCommandQueueInfo;
  if (!ask || ask(queue, CL_QUEUE_DEVICE, sizeof(device), &device, nullptr) !=
                  CL_SUCCESS)
    return nullptr;
  return device;
}
