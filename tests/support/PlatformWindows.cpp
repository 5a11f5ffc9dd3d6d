// What tests need of Windows.

#include "tests/support/Platform.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

// Makes a variable empty, as it can be when a process is started; an assignment
// would remove it. The C runtime and the system, which the runtime may ask
// again, each have a copy.
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

int corvane::test::redirectErrorStream(const char *path) {
  std::fflush(stderr);
  const int before = _dup(2);
  const int file =
      _open(path, _O_WRONLY | _O_CREAT | _O_TRUNC | _O_APPEND | _O_BINARY,
            _S_IREAD | _S_IWRITE);
  if (file < 0 || _dup2(file, 2) < 0)
    return -1;
  _close(file);
  return before;
}

void corvane::test::restoreErrorStream(int before) {
  std::fflush(stderr);
  _dup2(before, 2);
  _close(before);
}

char *corvane::test::mapLowPage() {
  constexpr std::uintptr_t step = 0x10000000;
  for (std::uintptr_t at = step; at < 16 * step; at += step)
    if (void *page = VirtualAlloc(reinterpret_cast<void *>(at), 1,
                                  MEM_RESERVE | MEM_COMMIT, PAGE_READONLY))
      return static_cast<char *>(page);
  return nullptr;
}

void corvane::test::unmapLowPage(char *page) {
  VirtualFree(page, 0, MEM_RELEASE);
}
