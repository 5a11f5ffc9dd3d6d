// Reads programs and devices for the record of the run.

#include "launch/TunedProgram.h"

#include "agent/AgentState.h"
#include "agent/RuntimeTable.h"
#include "base/CompanionQuery.h"
#include "launch/ProgramObstacle.h"
#include "programs/CreatedKernels.h"
#include "programs/DeviceIdentity.h"
#include "programs/ProgramIdentity.h"
#include "programs/RuntimeText.h"
#include "variants/LookAlike.h"
#include "variants/SpillScreen.h"
#include "variants/VariantName.h"

#include <map>
#include <set>
#include <utility>
#include <vector>

using namespace corvane;

// No program has longer texts; a runtime that claims one is wrong.
static constexpr std::size_t mostText = std::size_t{256} << 20;

static std::string programText(cl_program program, cl_program_info name) {
  return readRuntimeText(mostText,
                         [&](std::size_t room, void *place, std::size_t *size) {
                           return runtime().clGetProgramInfo(program, name,
                                                             room, place, size);
                         })
      .value_or(std::string());
}

static std::string buildText(cl_program program, cl_device_id device,
                             cl_program_build_info name) {
  return readRuntimeText(mostText,
                         [&](std::size_t room, void *place, std::size_t *size) {
                           return runtime().clGetProgramBuildInfo(
                               program, device, name, room, place, size);
                         })
      .value_or(std::string());
}

// A variant of a kernel that the program does not have replaces nothing.
static void describeKernels(llvm::StringRef names, ProgramLine &line) {
  std::map<std::string, std::vector<std::string>> kernels;
  std::vector<
      std::pair<std::string, std::unique_ptr<llvm::TransformedKernelAgent>>>
      variants;
  for (const llvm::StringRef name : splitOn(names, ';')) {
    auto variant = variantOf(name.str());
    if (variant) {
      variants.emplace_back(name.str(), std::move(variant));
      continue;
    }
    kernels[name.str()];
    if (std::string reason = whyNoVariant(name); !reason.empty())
      line.lookAlikes.push_back({name.str(), std::move(reason)});
  }
  for (const auto &[name, variant] : variants) {
    const auto kernel = kernels.find(variant->baseName);
    if (kernel == kernels.end())
      line.lookAlikes.push_back(
          {name, "there is no kernel \"" + variant->baseName + "\""});
    else
      kernel->second.push_back(variant->llvm::TransformedKernel::specText());
  }
  for (auto &[kernel, specs] : kernels)
    line.kernels.push_back({kernel, std::move(specs)});
}

static ProgramLine describe(cl_program program, cl_device_id device,
                            const std::string &hash) {
  ProgramLine line;
  line.hash = hash;
  line.options = buildText(program, device, CL_PROGRAM_BUILD_OPTIONS);
  describeKernels(programText(program, CL_PROGRAM_KERNEL_NAMES), line);
  std::string log = buildText(program, device, CL_PROGRAM_BUILD_LOG);
  line.spills = screenBuildLog(log.data());
  line.whyNotGenerated = programText(program, whyNotGeneratedQuery);
  return line;
}

// Only the text tells what a program's kernels do besides writing to buffers.
static std::string obstacleIn(cl_program program, cl_device_id device) {
  const std::string source = programText(program, CL_PROGRAM_SOURCE);
  if (source.empty())
    return "the program has no source to look at";
  return obstacleInProgram(
      source, buildText(program, device, CL_PROGRAM_BUILD_OPTIONS));
}

static const TunedProgram *findOrTell(Tuning &tuning, AgentState &state,
                                      cl_program program, cl_device_id device) {
  const std::optional<std::string> hash = programHash(state, program, device);
  if (!hash)
    return nullptr;
  auto known = tuning.programs.find(*hash);
  if (known == tuning.programs.end()) {
    TunedProgram told;
    told.obstacle = obstacleIn(program, device);
    told.number = tuning.run.add(describe(program, device, *hash));
    known = tuning.programs.emplace(*hash, std::move(told)).first;
  }
  return &known->second;
}

const TunedProgram *corvane::tunedProgram(Tuning &tuning, AgentState &state,
                                          KernelRecord &record,
                                          cl_device_id device) {
  if (!record.tunedProgram || record.tunedFor != device) {
    record.tunedProgram = findOrTell(tuning, state, record.program, device);
    record.tunedFor = device;
  }
  return record.tunedProgram;
}

void corvane::tellProgramOf(Tuning &tuning, AgentState &state, cl_kernel kernel,
                            cl_device_id device) {
  cl_program program = nullptr;
  if (runtime().clGetKernelInfo(kernel, CL_KERNEL_PROGRAM, sizeof program,
                                &program, nullptr) == CL_SUCCESS &&
      tuning.toldPrograms.insert(program).second)
    (void)findOrTell(tuning, state, program, device);
}

std::optional<std::uint32_t> corvane::tunedDevice(Tuning &tuning,
                                                  cl_device_id device) {
  const auto known = tuning.devices.find(device);
  if (known != tuning.devices.end())
    return known->second;
  std::optional<DeviceIdentity> identity = readDeviceIdentity(device);
  if (!identity)
    return std::nullopt;
  DeviceLine line;
  line.name = std::move(identity->name);
  line.vendor = std::move(identity->vendor);
  line.version = std::move(identity->version);
  line.driver = std::move(identity->driver);
  line.type = std::move(identity->type);
  line.units = identity->units;
  line.localMemory = identity->localMemory;
  const std::uint32_t number = tuning.run.add(std::move(line));
  tuning.devices.emplace(device, number);
  return number;
}
