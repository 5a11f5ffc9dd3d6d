// Hashes what the runtime tells of a program.

#include "programs/ProgramIdentity.h"

#include "agent/AgentState.h"
#include "agent/RuntimeTable.h"
#include "base/ProgramHash.h"
#include "programs/BuiltDevices.h"
#include "programs/ProgramRecord.h"
#include "programs/RuntimeText.h"

#include "llvm/ADT/STLExtras.h"

#include <algorithm>
#include <vector>

using namespace corvane;

// More than any program has; a runtime that claims it is wrong.
static constexpr std::size_t mostBinaryBytes = std::size_t{1} << 30;
static constexpr std::size_t mostDevices = 4096;

static std::optional<std::string> sourceOf(cl_program program) {
  return readRuntimeText(mostBinaryBytes, [=](std::size_t capacity, void *place,
                                              std::size_t *size) {
    return runtime().clGetProgramInfo(program, CL_PROGRAM_SOURCE, capacity,
                                      place, size);
  });
}

static std::optional<std::string> optionsOf(cl_program program,
                                            cl_device_id device) {
  return readRuntimeText(mostBinaryBytes, [=](std::size_t capacity, void *place,
                                              std::size_t *size) {
    return runtime().clGetProgramBuildInfo(
        program, device, CL_PROGRAM_BUILD_OPTIONS, capacity, place, size);
  });
}

static std::vector<cl_device_id> devicesOf(cl_program program) {
  std::size_t size = 0;
  const auto ask = runtime().clGetProgramInfo;
  if (ask(program, CL_PROGRAM_DEVICES, 0, nullptr, &size) != CL_SUCCESS ||
      size > mostDevices * sizeof(cl_device_id))
    return {};
  std::vector<cl_device_id> devices(size / sizeof(cl_device_id));
  if (ask(program, CL_PROGRAM_DEVICES, devices.size() * sizeof(cl_device_id),
          devices.data(), nullptr) != CL_SUCCESS)
    return {};
  return devices;
}

namespace {
/// The bytes of a binary.
struct Binary {
  ZeroedArray<unsigned char> bytes;
  std::size_t size = 0;
};
} // namespace

// The runtime writes all binaries at once, and leaves those out that have no
// place to go to.
static std::optional<Binary> binaryOf(cl_program program, cl_device_id device) {
  const std::vector<cl_device_id> devices = devicesOf(program);
  const auto found = llvm::find(devices, device);
  if (found == devices.end())
    return std::nullopt;
  const auto index = static_cast<std::size_t>(found - devices.begin());

  const auto ask = runtime().clGetProgramInfo;
  std::vector<std::size_t> sizes(devices.size());
  if (ask(program, CL_PROGRAM_BINARY_SIZES, sizes.size() * sizeof(std::size_t),
          sizes.data(), nullptr) != CL_SUCCESS)
    return std::nullopt;
  Binary binary;
  binary.size = sizes[index];
  if (binary.size == 0 || binary.size > mostBinaryBytes)
    return std::nullopt;
  binary.bytes = allocateZeroed<unsigned char>(binary.size);
  std::vector<unsigned char *> places(devices.size());
  places[index] = binary.bytes.get();
  if (!binary.bytes ||
      ask(program, CL_PROGRAM_BINARIES, places.size() * sizeof(unsigned char *),
          places.data(), nullptr) != CL_SUCCESS)
    return std::nullopt;
  return binary;
}

static std::optional<std::string> computeHash(cl_program program,
                                              cl_device_id device) {
  const std::optional<std::string> options = optionsOf(program, device);
  if (!options)
    return std::nullopt;
  const std::optional<std::string> source = sourceOf(program);
  if (source && !source->empty())
    return programHashText("source", *options, *source);
  if (const std::optional<Binary> binary = binaryOf(program, device))
    return programHashText(
        "binary", *options,
        {reinterpret_cast<const char *>(binary->bytes.get()), binary->size});
  return std::nullopt;
}

std::optional<std::string> corvane::programHash(AgentState &state,
                                                cl_program program,
                                                cl_device_id device) {
  if (const ProgramRecord *record = state.programs.find(program)) {
    const auto known = record->hashes.find(device);
    if (known != record->hashes.end())
      return known->second;
  }
  std::optional<std::string> hash = computeHash(program, device);
  // Looked up again: the runtime may have called the application back.
  if (ProgramRecord *record = state.programs.find(program))
    record->hashes[device] = hash;
  return hash;
}
