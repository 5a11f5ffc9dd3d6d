// Runs one of the OpenCL programs in hosts/, without and with the agent.

#pragma once

#include "tests/support/TempFolder.h"
#include "tests/system/Subprocess.h"
#include "tests/system/autotune/TimingLog.h"

namespace corvane::test {

/// The command of a built program.
std::vector<std::string>
hostProgram(const std::string &name,
            const std::vector<std::string> &words = {});

/// The variables of every run: kernels that were compiled once are kept for
/// all.
Environment withoutAgent();

/// The same with the layer, and so with the agent, in normal mode.
Environment withAgent();

/// The same in autotuning mode, with results in \p directory.
Environment autotuning(const std::string &directory);

/// Runs a program in autotuning mode and reads the log that it has left. Fails
/// the test unless results and exit code are as without the agent and nothing
/// was written to standard error.
TimingLog autotune(const std::vector<std::string> &command,
                   const TempFolder &results);

} // namespace corvane::test
