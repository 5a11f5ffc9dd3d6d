// Defines an environment variable for the length of a test.

#pragma once

#include "tests/support/Platform.h"

#include <cstdlib>
#include <optional>
#include <string>

namespace corvane::test {

/// Defines or removes an environment variable and puts it back at the end.
/// Not for tests in which other threads look at the environment meanwhile.
class EnvGuard {
public:
  /// \p value may be null: then the variable is removed.
  EnvGuard(const char *variable, const char *value) : name(variable) {
    if (const char *old = std::getenv(variable))
      before = old;
    set(value);
  }
  EnvGuard(const char *variable, const std::string &value)
      : EnvGuard(variable, value.c_str()) {}
  ~EnvGuard() { set(before ? before->c_str() : nullptr); }
  EnvGuard(const EnvGuard &) = delete;
  EnvGuard &operator=(const EnvGuard &) = delete;

  /// Changes the variable once more; null removes it.
  void set(const char *value) { assignVariable(name.c_str(), value); }
  void set(const std::string &value) { set(value.c_str()); }

private:
  std::string name;
  std::optional<std::string> before;
};

} // namespace corvane::test
