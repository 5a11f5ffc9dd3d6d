// Variables of the environment on Windows.

#include "tests/support/EnvGuard.h"

#include <cstring>

#include <windows.h>

// An assignment cannot do this: it would remove the variable. Processes are
// started with such variables, though, so we make it what it would be then, for
// the C runtime and for the system that the runtime may ask again.
static void defineEmpty(const char *name) {
  _putenv_s(name, "?");
  SetEnvironmentVariableA(name, "");
  const std::size_t length = std::strlen(name);
  for (char **entry = _environ; *entry; ++entry)
    if (std::strncmp(*entry, name, length) == 0 && (*entry)[length] == '=')
      (*entry)[length + 1] = '\0';
}

void corvane::test::assignVariable(const char *name, const char *value) {
  if (value && *value == '\0')
    return defineEmpty(name);
  _putenv_s(name, value ? value : "");
}
