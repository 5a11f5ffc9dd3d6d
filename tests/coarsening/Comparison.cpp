// Launches a kernel and its variants on equal buffers, and compares the
// buffers.
#include "tests/coarsening/Comparison.h"

#include "variants/VariantName.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>

namespace corvane::test {

/// A variant and whether it has been launched.
struct Comparison::Subject {
  std::string name;
  std::unique_ptr<llvm::TransformedKernelAgent> record;
  bool launched = false;
};

Comparison::Comparison(std::string coarsener, std::string plans)
    : tool(std::move(coarsener)), wanted(std::move(plans)) {
  cl_platform_id platform = nullptr;
  cl_int status = clGetPlatformIDs(1, &platform, nullptr);
  if (status == CL_SUCCESS)
    status = clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 1, &device, nullptr);
  if (status == CL_SUCCESS)
    context = clCreateContext(nullptr, 1, &device, nullptr, nullptr, &status);
  if (status == CL_SUCCESS)
    queue = clCreateCommandQueue(context, device, 0, &status);
  if (status != CL_SUCCESS)
    fail("there is no OpenCL device");
}

Comparison::~Comparison() {
  if (queue)
    clReleaseCommandQueue(queue);
  if (context)
    clReleaseContext(context);
}

void Comparison::fail(const std::string &text) {
  ++failed;
  std::cout << "FAILED " << current << ": " << text << std::endl;
}

std::string Comparison::summary() const {
  std::ostringstream out;
  out << kernelCount << " kernels, " << variantCount << " variants, "
      << compared << " launches compared, " << failed << " failures";
  return out.str();
}

static std::string readAll(const std::string &file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

static std::string quoted(const std::string &text) {
  std::string result = "'";
  for (const char c : text)
    result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return result + "'";
}

/// Runs corvane-coarsen on the file; false if it fails.
bool Comparison::makeVariants(const std::string &file,
                              const std::string &options,
                              std::string &program) {
  const std::string command = quoted(tool) + " " + quoted(file) + " --plans " +
                              quoted(wanted) + " --options " + quoted(options);
  std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"),
                                              pclose);
  if (!pipe)
    return false;
  char bytes[4096];
  for (size_t got; (got = fread(bytes, 1, sizeof bytes, pipe.get())) > 0;)
    program.append(bytes, got);
  return pclose(pipe.release()) == 0;
}

cl_program Comparison::build(const std::string &source,
                             const std::string &options) {
  const char *text = source.c_str();
  cl_int status = CL_SUCCESS;
  cl_program program =
      clCreateProgramWithSource(context, 1, &text, nullptr, &status);
  if (status == CL_SUCCESS)
    status =
        clBuildProgram(program, 1, &device, options.c_str(), nullptr, nullptr);
  if (status == CL_SUCCESS)
    return program;
  std::vector<char> log(1 << 16);
  (void)clGetProgramBuildInfo(program, device, CL_PROGRAM_BUILD_LOG, log.size(),
                              log.data(), nullptr);
  fail(std::string("the program cannot be built: ") + log.data());
  clReleaseProgram(program);
  return nullptr;
}

static std::vector<std::string> kernelNames(cl_program program) {
  std::vector<char> names(1 << 20);
  (void)clGetProgramInfo(program, CL_PROGRAM_KERNEL_NAMES, names.size(),
                         names.data(), nullptr);
  std::istringstream in(names.data());
  std::vector<std::string> result;
  for (std::string name; std::getline(in, name, ';');)
    result.push_back(name);
  std::sort(result.begin(), result.end());
  return result;
}

void Comparison::compareFile(const std::string &file) {
  current = file;
  if (!queue)
    return;
  const std::string source = readAll(file);
  std::string error;
  const KernelFile plans = readKernelFile(source, error);
  if (!error.empty())
    return fail("cannot be understood: " + error);
  std::string withVariants;
  if (!makeVariants(file, plans.options, withVariants))
    return fail("corvane-coarsen failed");
  cl_program program = build(withVariants, plans.options);
  if (!program)
    return;
  const std::vector<std::string> names = kernelNames(program);
  for (const KernelPlan &plan : plans.kernels) {
    std::vector<Subject> variants;
    for (const std::string &name : names) {
      auto record = parseVariantName(name);
      if (!record || record->baseName != plan.name)
        continue;
      if (record->kernelName() != name)
        fail(name + " is not the canonical form of the name");
      variants.push_back({name, std::move(record)});
    }
    compareKernel(program, plan, variants);
    if (plans.partly)
      continue;
    if (variants.empty())
      fail(plan.name + " has no variants");
    for (const Subject &variant : variants)
      if (!variant.launched)
        fail(variant.name + " was never launched");
  }
  clReleaseProgram(program);
}

bool Comparison::setArguments(cl_kernel kernel, const KernelPlan &plan,
                              const LaunchShape &asked,
                              std::vector<cl_mem> &buffers) {
  cl_int status = CL_SUCCESS;
  cl_uint index = 0;
  for (const ArgumentShape &shape : plan.arguments) {
    std::vector<std::uint8_t> bytes = contentsOf(shape, index + 1);
    if (shape.kind == ArgumentShape::Local) {
      status |= clSetKernelArg(kernel, index++, bytes.size(), nullptr);
      continue;
    }
    if (shape.kind == ArgumentShape::Value) {
      status |= clSetKernelArg(kernel, index++, bytes.size(), bytes.data());
      continue;
    }
    cl_int made = CL_SUCCESS;
    buffers.push_back(clCreateBuffer(context,
                                     CL_MEM_READ_WRITE | CL_MEM_COPY_HOST_PTR,
                                     bytes.size(), bytes.data(), &made));
    status |= made;
    status |= clSetKernelArg(kernel, index++, sizeof(cl_mem), &buffers.back());
  }
  cl_uint count = 0;
  status |= clGetKernelInfo(kernel, CL_KERNEL_NUM_ARGS, sizeof count, &count,
                            nullptr);
  if (count == index + 1) {
    std::array<cl_uint, 4> groups{};
    for (unsigned d = 0; d < asked.dims && asked.hasLocal; ++d)
      groups[d] = static_cast<cl_uint>(asked.global[d] / asked.local[d]);
    status |= clSetKernelArg(kernel, index, sizeof groups, groups.data());
  }
  return status == CL_SUCCESS;
}

/// Runs the kernel over `range`, for a launch that was asked for as `asked`.
bool Comparison::launch(cl_kernel kernel, const KernelPlan &plan,
                        const LaunchShape &range, const LaunchShape &asked,
                        Memory &memory) {
  std::vector<cl_mem> buffers;
  cl_int status = setArguments(kernel, plan, asked, buffers) ? CL_SUCCESS
                                                             : CL_INVALID_VALUE;
  if (status == CL_SUCCESS)
    status = clEnqueueNDRangeKernel(
        queue, kernel, range.dims, range.offset.data(), range.global.data(),
        range.hasLocal ? range.local.data() : nullptr, 0, nullptr, nullptr);
  if (status == CL_SUCCESS)
    status = clFinish(queue);
  size_t at = 0;
  for (const ArgumentShape &shape : plan.arguments) {
    if (shape.kind != ArgumentShape::Buffer || at == buffers.size())
      continue;
    memory.emplace_back(sizeOfType(shape.type) * shape.count);
    status |= clEnqueueReadBuffer(queue, buffers[at++], CL_TRUE, 0,
                                  memory.back().size(), memory.back().data(), 0,
                                  nullptr, nullptr);
  }
  for (cl_mem buffer : buffers)
    clReleaseMemObject(buffer);
  return status == CL_SUCCESS;
}

static std::string
differenceOf(const std::vector<std::vector<std::uint8_t>> &kernel,
             const std::vector<std::vector<std::uint8_t>> &variant) {
  for (size_t i = 0; i < kernel.size(); ++i)
    for (size_t at = 0; at < kernel[i].size(); ++at)
      if (kernel[i][at] != variant[i][at])
        return "buffer " + std::to_string(i) + ", byte " + std::to_string(at);
  return "";
}

void Comparison::compareKernel(cl_program program, const KernelPlan &plan,
                               std::vector<Subject> &variants) {
  ++kernelCount;
  variantCount += variants.size();
  const auto kernelOf = [&](const std::string &name) {
    return std::unique_ptr<_cl_kernel, decltype(&clReleaseKernel)>(
        clCreateKernel(program, name.c_str(), nullptr), clReleaseKernel);
  };
  for (const LaunchShape &asked : plan.launches) {
    Memory before;
    for (const ArgumentShape &shape : plan.arguments)
      if (shape.kind == ArgumentShape::Buffer)
        before.push_back(contentsOf(
            shape, static_cast<size_t>(&shape - plan.arguments.data()) + 1));
    Memory expected, again;
    const auto kernel = kernelOf(plan.name);
    if (!kernel || !launch(kernel.get(), plan, asked, asked, expected) ||
        !launch(kernel.get(), plan, asked, asked, again)) {
      fail(plan.name + " cannot be launched over " + asked.text);
      continue;
    }
    if (!differenceOf(expected, again).empty())
      fail(plan.name + " does not do the same twice over " + asked.text);
    if (differenceOf(expected, before).empty())
      fail(plan.name + " does nothing over " + asked.text);
    for (Subject &variant : variants) {
      LaunchShape range = asked;
      std::array<size_t, 3> global{}, local{};
      if (!prepareLaunch(*variant.record, asked.dims, asked.global.data(),
                         asked.local.data(), global.data(), local.data()))
        continue;
      range.global = global;
      range.local = local;
      variant.launched = true;
      Memory actual;
      const auto coarsed = kernelOf(variant.name);
      if (!coarsed || !launch(coarsed.get(), plan, range, asked, actual)) {
        fail(variant.name + " cannot be launched over " + asked.text);
        continue;
      }
      ++compared;
      const std::string difference = differenceOf(expected, actual);
      if (!difference.empty())
        fail(variant.name + " over " + asked.text + " differs in " +
             difference);
    }
  }
}

} // namespace corvane::test
