// Variables of the environment on Linux and its relatives.

#include "tests/support/EnvGuard.h"

void corvane::test::assignVariable(const char *name, const char *value) {
  if (value)
    setenv(name, value, 1);
  else
    unsetenv(name);
}
