// The standard error stream on Linux and its relatives.

#include "tests/support/Descriptor.h"

#include <cstdint>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

// A sanitizer's last words are for whoever runs the test, not for the test.
extern "C" __attribute__((weak)) void
__sanitizer_set_report_fd(void *descriptor);

int corvane::test::redirectErrorStream(const char *path) {
  std::fflush(stderr);
  const int before = dup(STDERR_FILENO);
  if (__sanitizer_set_report_fd)
    __sanitizer_set_report_fd(
        reinterpret_cast<void *>(static_cast<std::intptr_t>(before)));
  const int file =
      open(path, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
  if (file < 0 || dup2(file, STDERR_FILENO) < 0)
    return -1;
  close(file);
  return before;
}

void corvane::test::restoreErrorStream(int before) {
  std::fflush(stderr);
  dup2(before, STDERR_FILENO);
  if (__sanitizer_set_report_fd)
    __sanitizer_set_report_fd(
        reinterpret_cast<void *>(static_cast<std::intptr_t>(STDERR_FILENO)));
  close(before);
}
