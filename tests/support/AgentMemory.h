// Counts the memory that the agent's code asks for, and refuses it if a test
// says so.

#pragma once

#include <cstddef>

namespace corvane::test {

/// Counts and refuses the agent's requests for memory, on all threads; other
/// requests are left alone (see Side.h and AgentBoundary.h). For programs that
/// link corvane_agent_memory, which replaces the allocator in the whole
/// process.
struct AgentMemory {
  /// How many requests the agent has made so far.
  static std::size_t requests();

  /// Plans to refuse the \p nth request from now on, counted from 1: that one
  /// alone, or it and all later ones.
  static void refuse(std::size_t nth);
  static void refuseFrom(std::size_t nth);
  /// Whether a request was refused since a refusal was planned.
  static bool hasRefused();
  /// Refuses no request any more. Returns whether one was refused.
  static bool refuseNothing();

  /// How many blocks the agent has got that have not been freed.
  static std::size_t liveBlocks();
  static std::size_t liveBytes();
};

} // namespace corvane::test
