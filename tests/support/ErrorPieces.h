// Collects what is written to standard error, write by write.

#pragma once

#include <string>
#include <vector>

namespace corvane::test {

/// Replaces standard error until its end. One at a time.
class ErrorPieces {
public:
  ErrorPieces();
  ~ErrorPieces();
  ErrorPieces(const ErrorPieces &) = delete;
  ErrorPieces &operator=(const ErrorPieces &) = delete;

  /// The bytes of each write since the last call.
  std::vector<std::string> read();

private:
  int before;    ///< descriptor of the stream that was replaced
  void *channel; ///< the end that the pieces arrive at
};

} // namespace corvane::test
