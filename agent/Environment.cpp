// Looks variables up and changes them through the C runtime, so that the
// application's changes count.

#include "agent/Environment.h"

#include "agent/platform/Platform.h"

#include <cstring>

using namespace corvane;

const char *corvane::autotuneDir() { return lookUp(variable::autotune); }

const char *corvane::installLocation() {
  return lookUp(variable::installLocation);
}

bool corvane::flushOnReleaseContext() {
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
// again, because some C runtimes move all values when one is assigned.
static void moveVariable(const char *from, const char *to) {
  const char *value = lookUp(from);
  if (!value)
    return;
  setEnv(to, value, 1);
  if (haveOneValue(from, to))
    unsetEnv(from);
}

void corvane::hideAutotune() {
  moveVariable(variable::autotune, variable::autotuneShadow);
}

void corvane::restoreAutotune() {
  moveVariable(variable::autotuneShadow, variable::autotune);
}
