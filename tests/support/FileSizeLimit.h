// A full disk, played by a limit that Posix systems have.

#pragma once

#include <csignal>

#include <sys/resource.h>

namespace corvane::test {

/// Until its end, no file of this process can grow beyond some bytes.
class FileSizeLimit {
public:
  explicit FileSizeLimit(rlim_t bytes)
      : handlerBefore(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{bytes, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handlerBefore);
  }
  FileSizeLimit(const FileSizeLimit &) = delete;
  FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
  rlimit before{};
  void (*handlerBefore)(int);
};

} // namespace corvane::test
