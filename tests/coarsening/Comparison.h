// Runs a kernel and its variants on the first OpenCL device.
#pragma once

#include "tests/coarsening/KernelPlan.h"
#include "variants/TransformedKernel.h"

#include <CL/cl.h>

#include <map>
#include <memory>

namespace corvane::test {

/// Compares the kernels of files with their variants. Failures are printed.
class Comparison {
public:
  Comparison(std::string coarsener, std::string plans);
  ~Comparison();

  void compareFile(const std::string &file);

  size_t failures() const { return failed; }
  size_t launches() const { return compared; }
  std::string summary() const;

private:
  using Memory = std::vector<std::vector<std::uint8_t>>; ///< of each buffer
  struct Subject;

  bool makeVariants(const std::string &file, const std::string &options,
                    std::string &program);
  cl_program build(const std::string &source, const std::string &options);
  void compareKernel(cl_program program, const KernelPlan &plan,
                     std::vector<Subject> &variants);
  bool launch(cl_kernel kernel, const KernelPlan &plan,
              const LaunchShape &range, const LaunchShape &asked,
              Memory &memory);
  bool setArguments(cl_kernel kernel, const KernelPlan &plan,
                    const LaunchShape &asked, std::vector<cl_mem> &buffers);
  void fail(const std::string &text);

  const std::string tool, wanted;
  std::string current; ///< the file compared
  cl_device_id device = nullptr;
  cl_context context = nullptr;
  cl_command_queue queue = nullptr;
  size_t failed = 0, compared = 0, kernelCount = 0, variantCount = 0;
};

} // namespace corvane::test
