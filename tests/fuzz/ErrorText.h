// What one input makes the library write on the standard error stream.

#pragma once

#include <string>

namespace corvane::fuzz {

/// The descriptor of the stream that failures are told on, if that is not the
/// one that ErrorText finds; for fuzzers, which make their own arrangements.
extern int streamForFailures;

/// From its making on, file descriptor 2 is a file. One a process, for as long
/// as the process lives; fail() still reaches whoever started it.
class ErrorText {
public:
  explicit ErrorText(const std::string &path);

  /// All that was written since the last time.
  std::string take();

private:
  std::string path;
};

} // namespace corvane::fuzz
