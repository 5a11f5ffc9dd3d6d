// The calls by which binaries leave programs and come back.
//
// Applications that keep binaries make their programs from them again. Such a
// program is known by what its binary was made of, in this process or another.

#include "layer/KnownBinaries.h"

#include "layer/Companion.h"
#include "layer/CompanionSettings.h"
#include "layer/Programs.h"
#include "layer/RuntimeText.h"

#include "llvm/ADT/StringRef.h"

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

using namespace corvane;
using namespace corvane::layer;

static const KnownBinaries &knownBinaries() {
  static const auto &only = *new KnownBinaries(corvaneCacheFolder("binaries"));
  return only;
}

template <typename Element>
static std::vector<Element> readList(cl_program program, cl_program_info name,
                                     size_t count) {
  std::vector<Element> list(count);
  if (runtime().clGetProgramInfo(program, name, count * sizeof(Element),
                                 list.data(), nullptr) != CL_SUCCESS)
    list.clear();
  return list;
}

static std::optional<ProgramOrigin> originFor(cl_program program,
                                              cl_device_id device) {
  if (const auto known = originOf(program))
    return *known;
  const auto source = readText([&](size_t capacity, char *place, size_t *size) {
    return runtime().clGetProgramInfo(program, CL_PROGRAM_SOURCE, capacity,
                                      place, size);
  });
  const auto options =
      readText([&](size_t capacity, char *place, size_t *size) {
        return runtime().clGetProgramBuildInfo(
            program, device, CL_PROGRAM_BUILD_OPTIONS, capacity, place, size);
      });
  if (!source || source->empty() || !options)
    return std::nullopt;
  return ProgramOrigin{*source, *options};
}

static llvm::StringRef bytesOf(const unsigned char *binary, size_t size) {
  return {reinterpret_cast<const char *>(binary), size};
}

void corvane::layer::rememberBinaries(cl_program program, void *value,
                                      size_t capacity) noexcept {
  if (!companionsAreWanted() || !value)
    return;
  try {
    const size_t count = std::min<size_t>(capacity / sizeof(void *), 4096);
    cl_uint all = 0;
    if (runtime().clGetProgramInfo(program, CL_PROGRAM_NUM_DEVICES, sizeof all,
                                   &all, nullptr) != CL_SUCCESS ||
        all == 0 || all > count)
      return;
    const auto sizes = readList<size_t>(program, CL_PROGRAM_BINARY_SIZES, all);
    const auto devices =
        readList<cl_device_id>(program, CL_PROGRAM_DEVICES, all);
    const auto *binaries = static_cast<unsigned char *const *>(value);
    for (size_t i = 0; i < std::min(sizes.size(), devices.size()); ++i) {
      if (!binaries[i] || sizes[i] == 0)
        continue;
      if (const auto origin = originFor(program, devices[i]))
        knownBinaries().remember(bytesOf(binaries[i], sizes[i]), *origin);
    }
  } catch (const std::bad_alloc &) {
    // Then the binary will not be known.
  }
}

// All binaries must be of one program.
static std::shared_ptr<const ProgramOrigin>
commonOrigin(cl_uint count, const size_t *lengths,
             const unsigned char **binaries) {
  std::optional<ProgramOrigin> common;
  for (cl_uint i = 0; i < count; ++i) {
    if (!binaries[i])
      return nullptr;
    auto origin = knownBinaries().find(bytesOf(binaries[i], lengths[i]));
    if (!origin || (common && !(*common == *origin)))
      return nullptr;
    common = std::move(origin);
  }
  return common ? std::make_shared<const ProgramOrigin>(std::move(*common))
                : nullptr;
}

void corvane::layer::recogniseBinaries(
    cl_program program, cl_uint count, const size_t *lengths,
    const unsigned char **binaries) noexcept {
  if (!companionsAreWanted() || !program || !lengths || !binaries)
    return;
  try {
    auto origin = commonOrigin(count, lengths, binaries);
    programs().edit(program, [&](ProgramInfo &info) {
      info.isFromBinary = true;
      info.origin = std::move(origin);
    });
  } catch (const std::bad_alloc &) {
    // Then it stays unknown.
  }
}
