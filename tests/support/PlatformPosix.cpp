// What tests need of Linux and its relatives.

#include "tests/support/Platform.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

void corvane::test::assignVariable(const char *name, const char *value) {
  if (value)
    setenv(name, value, 1);
  else
    unsetenv(name);
}

// The report of a sanitizer goes to what standard error was before a test
// redirected it.
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

static constexpr std::size_t pageSize = 4096;

char *corvane::test::mapLowPage() {
  // The system uses the address that it is asked for, unless something is
  // mapped there.
  constexpr std::uintptr_t wish = 0x30000000;
  void *page = mmap(reinterpret_cast<void *>(wish), pageSize, PROT_READ,
                    MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  const bool isLow = reinterpret_cast<std::uintptr_t>(page) >> 32 == 0;
  return page != MAP_FAILED && isLow ? static_cast<char *>(page) : nullptr;
}

void corvane::test::unmapLowPage(char *page) { munmap(page, pageSize); }
