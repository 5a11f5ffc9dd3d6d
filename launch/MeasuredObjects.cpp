// Makes and retains objects through the runtime.

#include "launch/MeasuredObjects.h"

#include "agent/RuntimeTable.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>

using namespace corvane;

template <typename Answer>
static bool askQueue(cl_command_queue queue, cl_command_queue_info name,
                     Answer &answer) {
  return runtime().clGetCommandQueueInfo(queue, name, sizeof answer, &answer,
                                         nullptr) == CL_SUCCESS;
}

std::optional<LaunchQueue> corvane::describeQueue(cl_command_queue queue) {
  LaunchQueue described;
  cl_command_queue_properties properties = 0;
  if (!askQueue(queue, CL_QUEUE_CONTEXT, described.context) ||
      !askQueue(queue, CL_QUEUE_DEVICE, described.device) ||
      !askQueue(queue, CL_QUEUE_PROPERTIES, properties))
    return std::nullopt;
  described.inOrder =
      (properties & CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE) == 0;
  return described;
}

static Owned<cl_command_queue> makeQueue(const LaunchQueue &like) {
  cl_int status = CL_SUCCESS;
  cl_command_queue made = runtime().clCreateCommandQueue(
      like.context, like.device, CL_QUEUE_PROFILING_ENABLE, &status);
  return Owned<cl_command_queue>(status == CL_SUCCESS ? made : nullptr);
}

static Owned<cl_event> makeUserEvent(cl_context context) {
  cl_int status = CL_SUCCESS;
  cl_event made = runtime().clCreateUserEvent(context, &status);
  return Owned<cl_event>(status == CL_SUCCESS ? made : nullptr);
}

static Owned<cl_kernel> makeKernel(const KernelRecord &record,
                                   const std::string &name) {
  cl_int status = CL_SUCCESS;
  cl_kernel made =
      runtime().clCreateKernel(record.program, name.c_str(), &status);
  Owned<cl_kernel> kernel(status == CL_SUCCESS ? made : nullptr);
  std::uint64_t seen = 0;
  if (kernel && !record.arguments.replay(kernel.get(), seen))
    kernel.reset();
  return kernel;
}

static MeasuredVersion originalOf(const KernelRecord &record,
                                  const Launch &launch) {
  MeasuredVersion version;
  version.kernel = makeKernel(record, record.name());
  std::copy_n(launch.globalSize, launch.workDim, version.global.begin());
  version.hasLocal = launch.localSize != nullptr;
  if (version.hasLocal)
    std::copy_n(launch.localSize, launch.workDim, version.local.begin());
  return version;
}

static MeasuredVersion variantOf(const KernelRecord &record,
                                 const Launch &launch,
                                 const VariantChoice &choice,
                                 std::optional<cl_uint> kernelArguments) {
  const VariantDescription &description = *choice.variant->description;
  MeasuredVersion version;
  version.name = description.spec;
  version.kernel = makeKernel(record, description.kernelName);
  if (version.kernel &&
      !giveGroupCounts(version.kernel.get(), launch, kernelArguments))
    version.kernel.reset();
  version.global = choice.range.global;
  version.local = choice.range.local;
  version.hasLocal = choice.range.localSize() != nullptr;
  return version;
}

static std::string typeName(cl_kernel kernel, cl_uint index) {
  std::array<char, 128> name{};
  const auto ask = runtime().clGetKernelArgInfo;
  if (!ask || ask(kernel, index, CL_KERNEL_ARG_TYPE_NAME, name.size() - 1,
                  name.data(), nullptr) != CL_SUCCESS)
    return {};
  return name.data();
}

template <typename Handle>
static bool isHandle(const RecordedArgument &argument, Handle handle) {
  return argument.size == sizeof handle && argument.value &&
         std::memcmp(argument.value, &handle, sizeof handle) == 0;
}

// Of a buffer that is given as arguments of different types nothing is known.
static ElementType elementsOf(const KernelRecord &record,
                              const LaunchBuffer &buffer) {
  std::optional<ElementType> elements;
  for (const RecordedArgument &argument : record.arguments.recorded())
    if (isHandle(argument, buffer.memObject)) {
      const ElementType told =
          elementTypeOf(typeName(record.kernel, argument.index));
      if (elements && !(*elements == told))
        return {};
      elements = told;
    }
  return elements.value_or(ElementType{});
}

static bool retainBuffers(const KernelRecord &record,
                          const LaunchBuffers &buffers, TunedLaunch &tuned) {
  for (const LaunchBuffer &buffer : buffers.list()) {
    TunedBuffer kept;
    kept.memory = Owned<cl_mem>::retain(buffer.memObject);
    if (!kept.memory)
      return false;
    kept.size = buffer.size;
    kept.argument = buffer.argument;
    kept.elements = elementsOf(record, buffer);
    tuned.buffers.push_back(std::move(kept));
  }
  for (cl_mem memory : buffers.onlyRead()) {
    tuned.otherMemory.push_back(Owned<cl_mem>::retain(memory));
    if (!tuned.otherMemory.back())
      return false;
  }
  return true;
}

static bool retainSamplers(const KernelRecord &record, TunedLaunch &tuned) {
  for (const RecordedArgument &argument : record.arguments.recorded()) {
    cl_sampler sampler = nullptr;
    if (argument.size != sizeof sampler || !argument.value ||
        typeName(record.kernel, argument.index) != "sampler_t")
      continue;
    std::memcpy(&sampler, argument.value, sizeof sampler);
    tuned.samplers.push_back(Owned<cl_sampler>::retain(sampler));
    if (!tuned.samplers.back())
      return false;
  }
  return true;
}

static void makeVersions(const KernelRecord &record, const Launch &launch,
                         llvm::ArrayRef<VariantChoice> candidates,
                         TunedLaunch &tuned) {
  const std::optional<cl_uint> kernelArguments = argumentCount(launch.kernel);
  tuned.versions.push_back(originalOf(record, launch));
  for (const VariantChoice &choice : candidates) {
    MeasuredVersion version =
        variantOf(record, launch, choice, kernelArguments);
    if (version.kernel)
      tuned.versions.push_back(std::move(version));
  }
}

std::optional<TunedLaunch>
corvane::measuredObjects(const KernelRecord &record, const Launch &launch,
                         const LaunchQueue &queue, const LaunchBuffers &buffers,
                         llvm::ArrayRef<VariantChoice> candidates) {
  TunedLaunch tuned;
  tuned.queue = makeQueue(queue);
  tuned.done = makeUserEvent(queue.context);
  tuned.workDim = launch.workDim;
  makeVersions(record, launch, candidates, tuned);
  const bool isComplete =
      tuned.queue && tuned.done && tuned.versions.front().kernel &&
      tuned.versions.size() > 1 && retainBuffers(record, buffers, tuned) &&
      retainSamplers(record, tuned);
  if (!isComplete)
    return std::nullopt;
  return tuned;
}
