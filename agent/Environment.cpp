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

// Without memory for the new place the variable stays in the old one: the value
// is the application's, and there is no other copy of it.
static void moveVariable(const char *from, const char *to) {
  const char *value = lookUp(from);
  if (!value)
    return;
  setEnv(to, value, 1);
  const char *moved = lookUp(to);
  if (moved && std::strcmp(moved, value) == 0)
    unsetEnv(from);
}

void corvane::hideAutotune() {
  moveVariable(variable::autotune, variable::autotuneShadow);
}

void corvane::restoreAutotune() {
  moveVariable(variable::autotuneShadow, variable::autotune);
}
