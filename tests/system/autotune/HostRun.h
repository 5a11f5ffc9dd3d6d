// Running one of these tests' own OpenCL programs, with and without the agent.

#pragma once

#include "tests/support/TempFolder.h"
#include "tests/system/Subprocess.h"
#include "tests/system/autotune/TimingLog.h"

namespace corvane::test {

/// The command of a built program.
std::vector<std::string>
hostProgram(const std::string &name,
            const std::vector<std::string> &words = {});

/// What every run needs: kernels that were compiled once are kept for all.
Environment withoutAgent();

/// The layer, and so the agent; nothing is autotuned.
Environment withAgent();

/// The layer, with results below \p directory.
Environment autotuning(const std::string &directory);

/// Runs a program with the agent autotuning and reads the log it left. The
/// program's results and exit code must be as without the agent, and nothing
/// may be said.
TimingLog autotune(const std::vector<std::string> &command,
                   const TempFolder &results);

} // namespace corvane::test
