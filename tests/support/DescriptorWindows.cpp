// The standard error stream on Windows.

#include "tests/support/Descriptor.h"

#include <cstdio>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

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
