// Failures that a test has scripted.

#pragma once

#include <CL/cl.h>

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace corvane::test {

/// Decides, call by call, whether the runtime fails. Any thread.
class Answers {
public:
  /// Calls to \p name fail with \p status: all from now on, or only the
  /// \p nth from now on. CL_SUCCESS ends every rule for that name.
  void script(const std::string &name, cl_int status,
              std::optional<std::size_t> nth);

  /// The \p nth call from now on fails, whichever it is.
  void scriptAny(std::size_t nth, cl_int status);

  /// Counts a call to \p name and returns its failure; none: the call works.
  std::optional<cl_int> next(const std::string &name);

  /// The name of the call that failed by scriptAny last; empty if none has.
  std::string lastOfAny() const;

  /// How many calls there were so far.
  std::size_t count() const;

private:
  struct Rule {
    std::string name; ///< empty: any
    cl_int status;
    std::optional<std::size_t> number; ///< of the one call; none: all
  };
  bool applies(const Rule &rule, const std::string &name) const;

  mutable std::mutex lock;
  std::vector<Rule> rules;
  std::map<std::string, std::size_t> counts;
  std::size_t total = 0;
  std::string failedOfAny;
};

} // namespace corvane::test
