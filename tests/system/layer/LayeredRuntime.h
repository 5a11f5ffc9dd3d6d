// The layer with the real agent or another, over the scripted runtime.

#pragma once

#include "tests/support/EnvGuard.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/TempFolder.h"
#include "tests/system/LoadedLayer.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <list>
#include <string>
#include <utility>
#include <vector>

namespace corvane::test {

/// Each test has copies of layer and agent, because a layer starts only once.
class LayeredRuntime : public testing::Test {
protected:
  using Variables = std::vector<std::pair<std::string, std::string>>;

  /// With the agent library of this build, or with another \p agentFile.
  explicit LayeredRuntime(std::filesystem::path agentFile = AGENT_FILE)
      : agent(std::move(agentFile)) {}
  ~LayeredRuntime() override;

  /// An export of the agent; null if it has none of that name.
  void *agentsExport(const char *name) const;

  /// The table for the application. Defines the variables for the length of the
  /// test and loads, the first time; change `runtime.ownTable()` before.
  const cl_icd_dispatch &load(const Variables &variables = {});

  /// The same in autotuning mode, with results in the test's own folder.
  const cl_icd_dispatch &loadAutotuning(Variables variables = {});

  const cl_icd_dispatch &cl() { return load(); }

  /// A program of kernel "k" with a variant, and of "other" without.
  ProgramScript withVariant(ProgramScript program) {
    return program.kernel("k").kernel("k_coarsed_g0S4").kernel("other");
  }

  cl_program createProgram();
  cl_int build(cl_program program);
  std::string kernelNames(cl_program program);

  /// Creates and releases a kernel; returns which kernels existed in between.
  std::vector<std::string> createKernel(cl_program program, const char *name);

  FakeRuntime runtime;
  const TempFolder folder;

private:
  std::string copyBoth() const;
  std::string agentCopy() const;

  const std::filesystem::path agent;
  std::list<EnvGuard> environment;
  const LoadedLayer layer{copyBoth()};
  const cl_icd_dispatch *table = nullptr;
};

} // namespace corvane::test
