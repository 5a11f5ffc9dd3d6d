// Looks up, hides and restores the environment variables of the agent.

#pragma once

#include "base/Settings.h"

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <string>

namespace corvane {

namespace detail {
extern std::atomic<bool> variablesApply;

/// What a thread does with the environment while it keeps others from moving
/// variables.
enum class EnvironmentUse { None, Looks, Moves };
} // namespace detail

/// Decides, at load, whether variables are obeyed: not in a process that has
/// more rights than the user who started it, because that user wrote the
/// environment.
void readPrivileges();

/// The value of a variable; null when it is not defined or not obeyed. The
/// text belongs to the environment and lasts until the variable changes.
inline const char *lookUp(const char *name) {
  const bool apply = detail::variablesApply.load(std::memory_order_relaxed);
  return apply ? std::getenv(name) : nullptr;
}

const char *autotuneDir();     ///< where autotuning results go
const char *installLocation(); ///< where the report finds its scripts

/// The file that gets the diagnostic log. Every launch asks.
inline const char *dumpLogPath() { return lookUp(variable::dumpLog); }

/// Whether the release of a context ends with a flush: defined and not empty.
/// Any thread.
bool flushOnReleaseContext();

/// Defines \p name. Returns -1 and changes nothing if it is defined already and
/// \p overwrite is 0; otherwise 0.
int setEnv(const char *name, const char *value, int overwrite);

/// Removes \p name from the environment.
void unsetEnv(const char *name);

/// Parks the value of CORVANE_AUTOTUNE so that the runtime's compiler does not
/// see it, and brings it back. Several threads may have it parked at a time;
/// the last one brings it back. Hold the agent lock for either call, not
/// between them: launches on other threads look variables up under that lock.
void hideAutotune();
void restoreAutotune();

/// Keeps the agent from moving variables on another thread. Hold one while you
/// look a variable up without the agent lock, and while you use its value.
///
/// Waits while another thread moves a variable, but never for a thread that is
/// gone or for itself, as when a signal has ended the process in the middle of
/// such a move. Then it is false, and the environment must not be looked at. A
/// look within a look of the same thread is true.
class EnvironmentLook {
public:
  EnvironmentLook();
  ~EnvironmentLook();
  explicit operator bool() const { return mayLook; }

  EnvironmentLook(const EnvironmentLook &) = delete;
  EnvironmentLook &operator=(const EnvironmentLook &) = delete;

private:
  std::unique_lock<std::mutex> guard;
  detail::EnvironmentUse &use; ///< by the thread that made this object
  bool mayLook = false;
};

/// Where autotuning results go, also while the variable is parked; null when
/// it is not defined. Hold an EnvironmentLook.
const char *resultsDir();

/// Where autotuning results go, for callers without an EnvironmentLook; none if
/// the variable is not defined. A relative folder is looked for from
/// \p loadFolder, the folder that was current at the load; if that is empty it
/// stays relative. Any thread.
std::optional<std::string> outputDirectory(const std::string &loadFolder);

} // namespace corvane
