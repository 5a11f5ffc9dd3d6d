// A runtime that does nothing, so that what remains is the agent's own cost.

#pragma once

#include "agent/AgentInterface.h"
#include "agent/DispatchTable.h"

#include <string>
#include <vector>

namespace corvane::bench {

/// Loads the agent over functions that only answer what the agent has to know.
/// One at a time; unloads the agent at the end.
class NullRuntime {
public:
  /// \p kernelNames: what the one program holds once it is built.
  explicit NullRuntime(std::vector<std::string> kernelNames);
  ~NullRuntime();
  NullRuntime(const NullRuntime &) = delete;
  NullRuntime &operator=(const NullRuntime &) = delete;

  /// The functions themselves, and the table that the agent has installed.
  const DispatchTable &bare() const;
  const DispatchTable &hooked() const;

  cl_program program() const;
  cl_command_queue queue() const;

private:
  AgentOperations operations{};
};

} // namespace corvane::bench
