// What an application does while its environment changes.

#pragma once

#include "tests/fuzz/ErrorText.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/LoadedAgent.h"

#include <optional>

namespace corvane::fuzz {

/// An application with one kernel, one variant and one buffer.
struct Story {
  test::FakeRuntime runtime;
  int variantRuns = 0;
  int kernelRuns = 0;
  std::optional<test::LoadedAgent> agent;
  bool tuning = false; ///< whether the agent autotunes

  void load(ErrorText &errors);
  void build(bool spills);
  void launch();
  void flushAtContext(ErrorText &errors);
  void unload(ErrorText &errors);

private:
  void checkFlush(ErrorText &errors, bool had);

  cl_program program = nullptr;
  cl_kernel kernel = nullptr;
  cl_mem buffer = nullptr;
  bool hasState = true;
};

} // namespace corvane::fuzz
