// What an examination has found, a line each.

#pragma once

#include "llvm/ADT/Twine.h"

#include <string>

namespace corvane {

/// Collects lines that begin with "ok", "warn" or "fail".
class Findings {
public:
  void ok(const llvm::Twine &what);
  /// \p advice says what to do.
  void warn(const llvm::Twine &what, const llvm::Twine &advice);
  void fail(const llvm::Twine &what, const llvm::Twine &advice);

  bool hasFailed() const { return failed; }
  const std::string &text() const { return lines; }

private:
  void add(const char *kind, const std::string &what);

  std::string lines;
  bool failed = false;
};

} // namespace corvane
