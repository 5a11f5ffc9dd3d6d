// A transcript of the calls to the scripted runtime, in words and in order.

#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace corvane::test {

/// One call. The text is the name and the arguments: "clFlush(queue 1)".
struct Call {
  std::string name;
  std::string text;
};

/// A list of calls that any thread may add to.
class Transcript {
public:
  void add(const std::string &name, const std::vector<std::string> &arguments);
  void clear();

  /// The texts of all calls, or of those to the entries named.
  std::vector<std::string>
  texts(const std::vector<std::string> &names = {}) const;

private:
  mutable std::mutex lock;
  std::vector<Call> calls;
};

} // namespace corvane::test
