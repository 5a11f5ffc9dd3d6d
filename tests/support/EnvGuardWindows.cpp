// Variables of the environment on Windows.

#include "tests/support/EnvGuard.h"

void corvane::test::assignVariable(const char *name, const char *value) {
  _putenv_s(name, value ? value : "");
}
