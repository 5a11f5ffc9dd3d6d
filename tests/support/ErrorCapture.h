// Collects what is written to standard error.

#pragma once

#include "tests/support/TempFolder.h"

#include <cstdio>
#include <string>

namespace corvane::test {

/// Collects all bytes that are written to file descriptor 2, by whatever
/// stream, until its end. One at a time.
class ErrorCapture {
public:
  ErrorCapture();
  ~ErrorCapture();
  ErrorCapture(const ErrorCapture &) = delete;
  ErrorCapture &operator=(const ErrorCapture &) = delete;

  /// All that was written so far.
  std::string text() const {
    std::fflush(stderr); // some C runtimes gather what goes to a file
    return folder.read(name);
  }

private:
  static constexpr const char *name = "stderr.txt";
  TempFolder folder;
  int before;
};

} // namespace corvane::test
