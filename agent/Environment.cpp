// Looks variables up and changes them through the C runtime, so that the
// application's changes count.

#include "agent/Environment.h"

#include "agent/platform/Platform.h"

#include <atomic>
#include <cstring>
#include <thread>

using namespace corvane;

// A leaf lock: held while variables are moved, and by those who look meanwhile.
static std::mutex movingLock;
/// How many builds and links hide CORVANE_AUTOTUNE at the moment.
static unsigned hidingCalls = 0;
/// Whether the value of CORVANE_AUTOTUNE is where we have parked it.
static std::atomic<bool> isParked{false};

const char *corvane::autotuneDir() { return lookUp(variable::autotune); }

const char *corvane::installLocation() {
  return lookUp(variable::installLocation);
}

bool corvane::flushOnReleaseContext() {
  const EnvironmentLook look;
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
// again, because some C runtimes move all values when one is assigned. Returns
// whether it was moved.
static bool moveVariable(const char *from, const char *to) {
  const char *value = lookUp(from);
  if (!value)
    return false;
  setEnv(to, value, 1);
  if (!haveOneValue(from, to))
    return false;
  unsetEnv(from);
  return true;
}

void corvane::hideAutotune() {
  const std::lock_guard<std::mutex> guard(movingLock);
  ++hidingCalls;
  if (moveVariable(variable::autotune, variable::autotuneShadow))
    isParked = true;
}

void corvane::restoreAutotune() {
  const std::lock_guard<std::mutex> guard(movingLock);
  if (hidingCalls != 0 && --hidingCalls != 0)
    return;
  if (moveVariable(variable::autotuneShadow, variable::autotune))
    isParked = false;
}

// Whoever holds the lock is only moving a variable, unless the end of the
// process has stopped it in the middle.
EnvironmentLook::EnvironmentLook() : guard(movingLock, std::try_to_lock) {
  for (int tries = 0; !guard.owns_lock() && tries < 1000; ++tries) {
    std::this_thread::yield();
    (void)guard.try_lock();
  }
}

const char *corvane::resultsDir() {
  if (const char *directory = autotuneDir())
    return directory;
  return isParked ? lookUp(variable::autotuneShadow) : nullptr;
}
