// Finds or generates the variants of a program, and builds them.

#include "layer/Companion.h"

#include "base/OwnedHandle.h"
#include "base/Platform.h"
#include "base/ProgramHash.h"
#include "companion/Generation.h"
#include "companion/VariantsFile.h"
#include "companion/WholeFile.h"
#include "layer/CompanionSettings.h"
#include "layer/Programs.h"
#include "layer/RuntimeText.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>
#include <vector>

using namespace corvane;
using namespace corvane::layer;

namespace {

/// The program of a build that has succeeded, as the runtime tells it.
struct BuiltProgram {
  cl_program program = nullptr;
  cl_context context = nullptr;
  std::vector<cl_device_id> devices; ///< for which it is built
  std::string options;               ///< for all of them, as told
  std::string source;
  std::shared_ptr<const ProgramOrigin> origin;

  std::string hash() const {
    return origin ? programHashText("source", origin->options, origin->source)
                  : programHashText("source", options, source);
  }
};

/// How the runtime's programs are given back.
struct ProgramReferences {
  static void release(cl_program program) {
    (void)runtime().clReleaseProgram(program);
  }
};
using OwnedProgram = OwnedHandle<cl_program, ProgramReferences>;

} // namespace

static std::optional<std::string> programText(cl_program program,
                                              cl_program_info name) {
  return readText([&](size_t capacity, char *place, size_t *size) {
    return runtime().clGetProgramInfo(program, name, capacity, place, size);
  });
}

static std::string deviceText(cl_device_id device, cl_device_info name) {
  return readText([&](size_t capacity, char *place, size_t *size) {
           return runtime().clGetDeviceInfo(device, name, capacity, place,
                                            size);
         })
      .value_or(std::string());
}

static std::vector<cl_device_id> devicesOf(cl_program program) {
  constexpr size_t mostBytes = 4096 * sizeof(cl_device_id);
  const auto ask = runtime().clGetProgramInfo;
  size_t size = 0;
  if (ask(program, CL_PROGRAM_DEVICES, 0, nullptr, &size) != CL_SUCCESS ||
      size > mostBytes)
    return {};
  std::vector<cl_device_id> devices(size / sizeof(cl_device_id));
  if (ask(program, CL_PROGRAM_DEVICES, devices.size() * sizeof(cl_device_id),
          devices.data(), nullptr) != CL_SUCCESS)
    return {};
  return devices;
}

static bool isBuiltFor(cl_program program, cl_device_id device) {
  cl_build_status status = CL_BUILD_NONE;
  return runtime().clGetProgramBuildInfo(program, device,
                                         CL_PROGRAM_BUILD_STATUS, sizeof status,
                                         &status, nullptr) == CL_SUCCESS &&
         status == CL_BUILD_SUCCESS;
}

static std::optional<std::string> optionsFor(cl_program program,
                                             cl_device_id device) {
  return readText([&](size_t capacity, char *place, size_t *size) {
    return runtime().clGetProgramBuildInfo(
        program, device, CL_PROGRAM_BUILD_OPTIONS, capacity, place, size);
  });
}

// A variant must run on every device that the program is built for, so the
// companion is built for all of them. Returns what is in the way.
static std::string readDevices(BuiltProgram &built) {
  bool isFirst = true;
  for (cl_device_id device : devicesOf(built.program)) {
    if (!isBuiltFor(built.program, device))
      continue;
    const auto options = optionsFor(built.program, device);
    if (!options)
      return "the runtime does not tell its build options";
    if (!isFirst && *options != built.options)
      return "it is built with other options for each device";
    built.options = *options;
    built.devices.push_back(device);
    isFirst = false;
  }
  return built.devices.empty() ? "the runtime does not tell its devices" : "";
}

static std::string readSource(BuiltProgram &built) {
  const ProgramInfo info = programs().read(built.program);
  built.origin = info.origin;
  if (built.origin) {
    built.source = built.origin->source;
    return {};
  }
  built.source =
      programText(built.program, CL_PROGRAM_SOURCE).value_or(std::string());
  if (!built.source.empty())
    return {};
  return info.isFromBinary
             ? "made from a binary that was never seen: nothing to work on; "
               "PyOpenCL: set PYOPENCL_NO_CACHE=1 once"
             : "it has no source";
}

static std::string readProgram(BuiltProgram &built) {
  if (runtime().clGetProgramInfo(built.program, CL_PROGRAM_CONTEXT,
                                 sizeof built.context, &built.context,
                                 nullptr) != CL_SUCCESS)
    return "the runtime does not tell its context";
  std::string problem = readSource(built);
  return problem.empty() ? readDevices(built) : problem;
}

static void say(const std::string &line) {
  platform::writeStandardError("CorvaneLayer: " + line + ".\n");
}

static Generation &generation() {
  static auto &only =
      *new Generation(companionSettings().generator,
                      corvaneCacheFolder("variants"), generatorLimits());
  return only;
}

// The variants, or a list of none with the reason.
static VariantsFile generateFor(const BuiltProgram &built,
                                const std::string &options) {
  std::string device;
  for (cl_device_id each : built.devices)
    device += deviceText(each, CL_DEVICE_NAME) + "\n" +
              deviceText(each, CL_DRIVER_VERSION) + "\n";
  Generated generated = generation().generate(built.source, options, device);
  if (!generated.file) {
    if (generated.isFirstFailure)
      say("no variants are generated: " + generated.failure);
    generated.file.emplace().whyNone = generated.failure;
  }
  return std::move(*generated.file);
}

static VariantsFile findVariants(const BuiltProgram &built,
                                 const std::string &options) {
  const CompanionSettings &settings = companionSettings();
  const std::string file =
      pathInFolder(settings.folder, variantsFileName(built.hash()));
  if (!settings.generator.empty()) {
    VariantsFile generated = generateFor(built, options);
    if (!settings.folder.empty() && !generated.program.empty())
      (void)replaceWholeFile(file, variantsText(generated));
    return generated;
  }
  VariantsFile none;
  const auto bytes = readWholeFile(file, mostVariantsBytes);
  if (!bytes)
    return none;
  std::optional<VariantsFile> found = readVariants(*bytes);
  if (found && includesAreUnchanged(*found))
    return std::move(*found);
  none.whyNone = found ? "a file that it includes has changed since its "
                         "variants were generated"
                       : "the file of its variants is damaged";
  return none;
}

// None if the runtime refuses the program, or builds it and fails.
static OwnedProgram build(const BuiltProgram &built, const std::string &text,
                          const std::string &options) {
  const char *string = text.c_str();
  const size_t length = text.size();
  OwnedProgram made(runtime().clCreateProgramWithSource(
      built.context, 1, &string, &length, nullptr));
  if (!made)
    return made;
  // The agent needs to know the types of arguments. What the compiler has
  // against the text of variants is no reason to fail, whatever it warns of.
  const std::string all = options + " -cl-kernel-arg-info -w";
  if (runtime().clBuildProgram(
          made.get(), static_cast<cl_uint>(built.devices.size()),
          built.devices.data(), all.c_str(), nullptr, nullptr) != CL_SUCCESS)
    made.reset();
  return made;
}

// The kernels of the companion that are on the list, and no kernels of the
// program, sorted. Nothing else may pass for a kernel of the program.
static Names variantsIn(cl_program companion, cl_program program,
                        const VariantsFile &listed) {
  Names own = askForNames(runtime(), program).value_or(Names());
  std::sort(own.begin(), own.end());
  Names all = without(askForNames(runtime(), companion).value_or(Names()), own);
  std::sort(all.begin(), all.end());
  Names variants;
  for (const ListedVariant &variant : listed.variants)
    if (std::binary_search(all.begin(), all.end(), variant.name))
      variants.push_back(variant.name);
  std::sort(variants.begin(), variants.end());
  return variants;
}

static CompanionParts makeParts(cl_program program, const std::string &passed) {
  CompanionParts parts;
  BuiltProgram built;
  built.program = program;
  parts.whyNone = readProgram(built);
  parts.origin = built.origin;
  if (!parts.whyNone.empty())
    return parts;
  const std::string options = built.origin ? built.origin->options : passed;
  const VariantsFile variants = findVariants(built, options);
  parts.whyNone = variants.whyNone;
  if (variants.program.empty())
    return parts;
  OwnedProgram companion = build(built, variants.program, options);
  if (!companion) {
    parts.whyNone = "the program with its variants cannot be built";
    return parts;
  }
  parts.variants = variantsIn(companion.get(), program, variants);
  parts.context = built.context;
  parts.program = companion.claim();
  return parts;
}

void corvane::layer::bringCompanion(cl_program program,
                                    const char *options) noexcept {
  if (!companionsAreWanted() || !programs().has(program))
    return;
  try {
    setCompanion(program, std::make_shared<const Companion>(
                              makeParts(program, options ? options : "")));
  } catch (const std::bad_alloc &) {
    // Then the kernels run as they are.
  }
}

void corvane::layer::forgoCompanion(cl_program program) noexcept {
  if (!companionsAreWanted() || !program)
    return;
  try {
    CompanionParts parts;
    parts.whyNone = "it was linked from compiled programs";
    setCompanion(program, std::make_shared<const Companion>(std::move(parts)));
  } catch (const std::bad_alloc &) {
    // Then no reason is told.
  }
}
