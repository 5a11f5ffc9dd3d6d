// What is written on the standard error stream meanwhile, write by write.

#pragma once

#include <string>
#include <vector>

namespace corvane::test {

/// Takes the place of standard error while it lives. One at a time.
class ErrorPieces {
public:
  ErrorPieces();
  ~ErrorPieces();
  ErrorPieces(const ErrorPieces &) = delete;
  ErrorPieces &operator=(const ErrorPieces &) = delete;

  /// What each write has brought since the last call.
  std::vector<std::string> read();

private:
  int before;    ///< descriptor of the stream that stood here
  void *channel; ///< the end that the pieces arrive at
};

} // namespace corvane::test
