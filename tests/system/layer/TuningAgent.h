// A test agent that has launches tuned later, when the test says.

#pragma once

#include <CL/cl_icd.h>

#include <map>
#include <vector>

namespace corvane::test {

/// Keeps a kernel "NAME_coarsed_g0S4" for each kernel that has one in its
/// program. Asks of each launch whether it may be tuned, and lets one that may
/// wait for an event of its own.
struct TuningAgent {
  // What the test wants.

  cl_context context = nullptr; ///< of the agent's events
  bool asks = true;             ///< false: like an agent that tunes nothing
  bool tunes = true; ///< false: a launch that may be tuned runs at once
  /// The variant runs in place of a kernel that is not tuned.
  bool runsVariants = false;

  // What the agent finds.

  cl_icd_dispatch runtime; ///< what the agent takes for the runtime
  /// What it is answered, launch by launch: a `LaunchTuning` each.
  std::vector<cl_uint> answers;
  unsigned launches = 0;                   ///< that it has seen
  std::vector<cl_event> pending;           ///< that tuned launches wait for
  std::map<cl_kernel, cl_kernel> variants; ///< by the application's kernel
};

} // namespace corvane::test

/// The agent of a library; exported as "tuningAgent".
extern "C" corvane::test::TuningAgent *tuningAgent();
