// An application whose kernels are measured while it runs.

#pragma once

#include "tests/behaviour/launch/Application.h"

#include "results/runs/RunReader.h"

#include <memory>
#include <string>
#include <vector>

namespace corvane::test {

/// Its program has the kernel "k" with the variants that a test adds. Argument
/// 0 is a buffer that it reads, argument 1 one that it writes; both have four
/// bytes.
struct MeasuredApplication : OutputFolder, Application {
  explicit MeasuredApplication(
      const Variables &more = {},
      const std::function<void(DispatchTable &)> &prepare = {});
  /// Lets go of what the application has.
  ~MeasuredApplication();

  /// Adds the variant with this spec.
  void addVariant(const std::string &spec, KernelBody does);

  /// Makes the kernel, with both buffers as its arguments.
  void start();

  /// Launches 64 work-items in groups of 4, or other \p global sizes, and waits
  /// for the end of the run. Returns the run's status.
  cl_int run(std::size_t global = 64);

  void clearOutput() { runtime.setBytes(output, {0, 0, 0, 0}); }

  /// What was launched on the application's own queue since the transcript was
  /// forgotten: names of kernels.
  std::vector<std::string> launched() const;

  /// Runs once more and tells which kernel did it.
  std::string kernelOfNextRun(std::size_t global = 64);

  /// The record of the run; ends the run first if \p ended.
  RunRecord record(bool ended = false);
  std::string runFolder() const;

  /// What the record says of the configuration called \p number.
  RunConfiguration configuration(std::uint32_t number = 0) {
    return record().configurations.at(number);
  }
  std::string untunable() { return configuration().line.untunable; }

  /// What "k" does; it squares unless a test says otherwise.
  std::shared_ptr<KernelBody> body;

  cl_kernel kernel = nullptr;
  cl_mem input = nullptr;
  cl_mem output = nullptr;
};

/// Argument 1 gets the squares of argument 0; what "k" does.
void square(const Launch &launch);

} // namespace corvane::test
