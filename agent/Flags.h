// Process-wide switches that are set while the agent is being loaded.

#pragma once

#include <atomic>

namespace corvane {

namespace detail {
extern std::atomic<bool> autotuneOutputFlag;
} // namespace detail

/// Whether autotuning is on: at load the raw timing log could be created. May
/// be read on any thread.
inline bool autotuneOutput() {
  return detail::autotuneOutputFlag.load(std::memory_order_relaxed);
}
void setAutotuneOutput(bool on);

/// Whether the runtime has accepted our hooks, and whether the environment asks
/// to bypass the vectorisation safety check. For whoever debugs
/// the library; nothing in it depends on them.
void setHooksInstalled(bool installed);
void setBypassVectorizationSafetyCheck(bool bypass);

} // namespace corvane
