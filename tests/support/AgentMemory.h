// The memory that the agent's code gets, and how to let it get none.

#pragma once

#include <cstddef>

namespace corvane::test {

/// Counts and refuses what the agent asks the allocator for, on whatever
/// thread; other requests are left alone (see Side.h and Frontier.h). For
/// programs that link corvane_agent_memory, which takes the place of the
/// allocator's functions in the whole process.
struct AgentMemory {
  /// Requests of the agent's so far; releases are none.
  static std::size_t requests();

  /// The \p nth request from now on is refused, from 1: that one alone, or it
  /// and all later ones.
  static void refuse(std::size_t nth);
  static void refuseFrom(std::size_t nth);
  /// Whether something was refused since this was planned.
  static bool hasRefused();
  /// Nothing is refused any more. Returns whether something was.
  static bool refuseNothing();

  /// What the agent has asked for and that has not been given back.
  static std::size_t liveBlocks();
  static std::size_t liveBytes();
};

} // namespace corvane::test
