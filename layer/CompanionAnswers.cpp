// What the agent is told of programs with generated variants, and what the
// application is not told.

#include "base/CompanionQuery.h"
#include "layer/Answer.h"
#include "layer/Companion.h"
#include "layer/Kernels.h"
#include "layer/KnownBinaries.h"
#include "layer/LowerHooks.h"
#include "layer/RuntimeText.h"
#include "layer/UpperHooks.h"

#include <algorithm>
#include <string>

using namespace corvane;
using namespace corvane::layer;

static cl_int giveText(const Answer &answer, const std::string &text) {
  return answer.give(text.c_str(), text.size() + 1);
}

static std::string withVariants(std::string names, const Names &variants) {
  for (const std::string &variant : variants)
    names.append(names.empty() ? "" : ";").append(variant);
  return names;
}

// Questions of the agent's. A program that was made from a known binary is to
// the agent what it was before.
cl_int CL_API_CALL lower::clGetProgramInfo(cl_program program,
                                           cl_program_info name,
                                           size_t capacity, void *value,
                                           size_t *length) {
  const Answer answer{capacity, value, length};
  const CompanionRef companion = companionOf(program);
  if (name == whyNotGeneratedQuery)
    return giveText(answer,
                    companion ? companion->parts.whyNone : std::string());
  const auto origin = name == CL_PROGRAM_SOURCE ? originOf(program) : nullptr;
  if (origin)
    return giveText(answer, origin->source);
  const bool addsNames = name == CL_PROGRAM_KERNEL_NAMES && companion &&
                         !companion->parts.variants.empty();
  const auto ask = [&](size_t room, void *place, size_t *size) {
    return runtime().clGetProgramInfo(program, name, room, place, size);
  };
  const auto names = addsNames ? readText(ask) : std::nullopt;
  if (!names)
    return ask(capacity, value, length);
  return giveText(answer, withVariants(*names, companion->parts.variants));
}

cl_int CL_API_CALL lower::clGetProgramBuildInfo(cl_program program,
                                                cl_device_id device,
                                                cl_program_build_info name,
                                                size_t capacity, void *value,
                                                size_t *length) {
  if (name == CL_PROGRAM_BUILD_OPTIONS)
    if (const auto origin = originOf(program))
      return giveText({capacity, value, length}, origin->options);
  return runtime().clGetProgramBuildInfo(program, device, name, capacity, value,
                                         length);
}

namespace {
/// The companion's kernel of the same name as an application's. The companion
/// was built so that the runtime tells its arguments.
class SameKernel {
public:
  SameKernel(cl_kernel kernel, cl_program companion) {
    const auto name = readText([&](size_t room, char *place, size_t *size) {
      return runtime().clGetKernelInfo(kernel, CL_KERNEL_FUNCTION_NAME, room,
                                       place, size);
    });
    if (name)
      same = runtime().clCreateKernel(companion, name->c_str(), nullptr);
  }
  ~SameKernel() {
    if (same)
      (void)runtime().clReleaseKernel(same);
  }
  SameKernel(const SameKernel &) = delete;
  SameKernel &operator=(const SameKernel &) = delete;

  cl_kernel get() const { return same; }

private:
  cl_kernel same = nullptr;
};
} // namespace

cl_int CL_API_CALL lower::clGetKernelArgInfo(cl_kernel kernel, cl_uint index,
                                             cl_kernel_arg_info name,
                                             size_t capacity, void *value,
                                             size_t *length) {
  const auto ask = runtime().clGetKernelArgInfo;
  const cl_int status = ask(kernel, index, name, capacity, value, length);
  if (status != CL_KERNEL_ARG_INFO_NOT_AVAILABLE)
    return status;
  const CompanionRef companion = kernels().look(
      kernel, [](const KernelInfo &info) { return info.companion; });
  if (!companion || !companion->parts.program)
    return status;
  const SameKernel same(kernel, companion->parts.program);
  return same.get() ? ask(same.get(), index, name, capacity, value, length)
                    : status;
}

// A companion holds its context.
cl_int CL_API_CALL upper::clGetContextInfo(cl_context context,
                                           cl_context_info name,
                                           size_t capacity, void *value,
                                           size_t *length) {
  const cl_uint held =
      name == CL_CONTEXT_REFERENCE_COUNT ? companionsIn(context) : 0;
  const cl_int status =
      runtime().clGetContextInfo(context, name, capacity, value, length);
  if (status == CL_SUCCESS && value && held != 0) {
    cl_uint &count = *static_cast<cl_uint *>(value);
    count -= std::min(count, held);
  }
  return status;
}
