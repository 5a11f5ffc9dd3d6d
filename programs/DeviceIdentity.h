// What tells one device from another in run records and profiles.

#pragma once

#include <CL/cl.h>

#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// A device in the runtime's words, which are UTF-8 here whatever they were.
struct DeviceIdentity {
  std::string name;        ///< CL_DEVICE_NAME
  std::string vendor;      ///< CL_DEVICE_VENDOR
  std::string driver;      ///< CL_DRIVER_VERSION
  std::string version;     ///< CL_DEVICE_VERSION; empty if not told
  std::string type;        ///< "CPU", "GPU", "accelerator", "custom" or "other"
  std::uint32_t units = 0; ///< compute units; 0 if not told
  std::uint64_t localMemory = 0; ///< bytes; 0 if not told
};

/// Asks the runtime. None if it does not tell name, vendor or driver: then
/// nothing that was measured can be known to hold for the device.
std::optional<DeviceIdentity> readDeviceIdentity(cl_device_id device);

/// The device of a queue; null if the runtime does not tell it.
cl_device_id deviceOfQueue(cl_command_queue queue);

} // namespace corvane
