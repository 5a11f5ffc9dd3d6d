// Creates and releases objects through the agent.

#include "bench/hooks/Application.h"

#include "bench/null/NullRuntime.h"

#include <array>
#include <utility>

using namespace corvane::bench;

Program::Program(const std::string &kernels) {
  const char *text = kernels.c_str();
  cl_int status = CL_SUCCESS;
  handle =
      hooked().clCreateProgramWithSource(nullptr, 1, &text, nullptr, &status);
  hooked().clBuildProgram(handle, 0, nullptr, nullptr, nullptr, nullptr);
}

Program::~Program() {
  if (handle)
    hooked().clReleaseProgram(handle);
}

Program::Program(Program &&other) noexcept
    : handle(std::exchange(other.handle, nullptr)) {}

Kernel::Kernel(const Program &program, const char *name) {
  cl_int status = CL_SUCCESS;
  handle = hooked().clCreateKernel(program, name, &status);
}

Kernel::~Kernel() {
  if (handle)
    hooked().clReleaseKernel(handle);
}

Kernel::Kernel(Kernel &&other) noexcept
    : handle(std::exchange(other.handle, nullptr)) {}

cl_mem corvane::bench::createBuffer(std::size_t size) {
  cl_int status = CL_SUCCESS;
  return hooked().clCreateBuffer(nullptr, CL_MEM_READ_WRITE, size, nullptr,
                                 &status);
}

Population::Population(std::size_t count) {
  const std::string names = kernelWithVariants(1);
  for (std::size_t i = 0; i != count; ++i) {
    programs.emplace_back(names);
    kernels.emplace_back(programs.back(), "k");
    buffers.push_back(createBuffer(64));
  }
}

Population::~Population() {
  for (cl_mem buffer : buffers)
    hooked().clReleaseMemObject(buffer);
}

// Each variant coarsens by a prime and accepts multiples of its square.
static constexpr std::array<std::size_t, 16> primes = {
    2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 41, 43, 47, 53};

std::string corvane::bench::kernelWithVariants(std::size_t count) {
  std::string names = "k";
  for (std::size_t i = 0; i != count; ++i)
    names += " k_coarsed_g0S" + std::to_string(primes.at(i));
  return names;
}

std::size_t corvane::bench::sizeFor(std::size_t variant) {
  return primes.at(variant) * primes.at(variant) * localSize;
}

std::size_t corvane::bench::sameAnswerFor(std::size_t global) {
  return global * 59; // a prime that no variant has
}

std::size_t corvane::bench::sizeFor(std::size_t variant, std::size_t other) {
  return sizeFor(variant) * primes.at(other) * primes.at(other);
}
