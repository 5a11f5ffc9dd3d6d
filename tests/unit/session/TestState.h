// A state for the tests of a folder that does not know the record types.

#pragma once

#include "agent/AgentState.h"
#include "session/LaunchHistory.h"

#include <memory>
#include <string>

namespace corvane::test {

/// The first line of the timing log, with its line feed.
inline constexpr const char *logHeaderText =
    "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
    "coarsed_kernel,time\n";

/// Installs a state and turns autotuning on, until the end of the test or until
/// a flush takes the state away.
class TestState {
public:
  TestState();
  ~TestState();
  TestState(const TestState &) = delete;
  TestState &operator=(const TestState &) = delete;

  /// The state's launches, which may outlive the state.
  LaunchHistory &history() { return *launches; }

  /// Adds a launch without any timings.
  LaunchRecord &addLaunch(const std::string &kernel, std::uint32_t workDim,
                          std::array<std::size_t, 3> globalSize,
                          std::array<std::size_t, 3> localSize);

  /// Completes a run as the runtime's callback does.
  void complete(LaunchRecord &record, const std::string &version,
                std::uint64_t nanoseconds);

  /// How many states were destroyed since this one was installed.
  static int destroyedStates();

private:
  std::shared_ptr<LaunchHistory> launches;
};

} // namespace corvane::test
