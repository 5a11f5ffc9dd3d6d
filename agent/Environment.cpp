// Looks variables up and changes them through the C runtime, so that the
// application's changes count.

#include "agent/Environment.h"

#include "base/Platform.h"

#include "llvm/Support/Path.h"

#include <atomic>
#include <cstring>

using namespace corvane;

std::atomic<bool> detail::variablesApply{true};

// A leaf lock: held while variables are moved, and by those who look meanwhile.
static std::mutex movingLock;
/// How many builds and links hide CORVANE_AUTOTUNE at the moment.
static unsigned hidingCalls = 0;
/// What this thread is doing with the environment.
static thread_local detail::EnvironmentUse useByThread =
    detail::EnvironmentUse::None;
/// Whether the value of CORVANE_AUTOTUNE is where we have parked it.
static std::atomic<bool> isParked{false};

const char *corvane::autotuneDir() { return lookUp(variable::autotune); }

const char *corvane::installLocation() {
  return lookUp(variable::installLocation);
}

void corvane::readPrivileges() {
  detail::variablesApply = !platform::hasForeignRights();
}

bool corvane::flushOnReleaseContext() {
  const EnvironmentLook look;
  if (!look)
    return false;
  const char *value = lookUp(variable::flushOnReleaseContext);
  return value && *value != '\0';
}

int corvane::setEnv(const char *name, const char *value, int overwrite) {
  if (overwrite == 0 && lookUp(name))
    return -1;
  platform::defineVariable(name, value);
  return 0;
}

void corvane::unsetEnv(const char *name) { platform::removeVariable(name); }

static bool haveOneValue(const char *name, const char *other) {
  const char *value = lookUp(name);
  const char *otherValue = lookUp(other);
  return value && otherValue && std::strcmp(value, otherValue) == 0;
}

// Without memory for the new place the variable stays in the old one: the value
// is the application's, and there is no other copy of it. Both are looked up
// again, because some C runtimes move all values when one is assigned. An empty
// value that no assignment can keep is removed: the variable is to be hidden.
// Returns whether it was moved.
static bool moveVariable(const char *from, const char *to) {
  const char *value = lookUp(from);
  if (!value)
    return false;
  const bool canBeKept = *value != '\0' || platform::keepsEmptyVariables;
  useByThread = detail::EnvironmentUse::Moves;
  setEnv(to, value, 1);
  const bool isThere = !canBeKept || haveOneValue(from, to);
  if (isThere)
    unsetEnv(from);
  useByThread = detail::EnvironmentUse::Looks;
  return isThere;
}

void corvane::hideAutotune() {
  const EnvironmentLook look;
  if (!look)
    return;
  ++hidingCalls;
  if (moveVariable(variable::autotune, variable::autotuneShadow))
    isParked = true;
}

void corvane::restoreAutotune() {
  const EnvironmentLook look;
  if (!look || (hidingCalls != 0 && --hidingCalls != 0))
    return;
  if (moveVariable(variable::autotuneShadow, variable::autotune))
    isParked = false;
}

EnvironmentLook::EnvironmentLook()
    : guard(movingLock, std::defer_lock), use(useByThread) {
  if (use != detail::EnvironmentUse::None) {
    // Within another look of this thread variables stay where they are; within
    // a move, which a signal has interrupted, they may be anywhere.
    mayLook = use == detail::EnvironmentUse::Looks;
    return;
  }
  if (platform::otherThreadsAreGone())
    (void)guard.try_lock();
  else
    guard.lock();
  mayLook = guard.owns_lock();
  if (mayLook)
    use = detail::EnvironmentUse::Looks;
}

EnvironmentLook::~EnvironmentLook() {
  if (guard.owns_lock())
    use = detail::EnvironmentUse::None;
}

const char *corvane::resultsDir() {
  if (const char *directory = autotuneDir())
    return directory;
  return isParked ? lookUp(variable::autotuneShadow) : nullptr;
}

// An empty text names the root.
static bool isRelative(const std::string &directory) {
  return !directory.empty() && !llvm::sys::path::has_root_path(directory);
}

std::optional<std::string>
corvane::outputDirectory(const std::string &loadFolder) {
  const EnvironmentLook look;
  const char *value = look ? resultsDir() : nullptr;
  if (!value)
    return std::nullopt;
  const std::string directory = value;
  if (loadFolder.empty() || !isRelative(directory))
    return directory;
  return loadFolder + "/" + directory;
}
