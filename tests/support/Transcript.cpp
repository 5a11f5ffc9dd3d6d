// Adds calls to a transcript, and selects them by entry.

#include "tests/support/Transcript.h"

#include "tests/support/Words.h"

#include <algorithm>

using namespace corvane::test;

void Transcript::add(const std::string &name,
                     const std::vector<std::string> &arguments) {
  std::lock_guard<std::mutex> guard(lock);
  calls.push_back({name, name + "(" + joined(arguments) + ")"});
}

void Transcript::clear() {
  std::lock_guard<std::mutex> guard(lock);
  calls.clear();
}

std::vector<std::string>
Transcript::texts(const std::vector<std::string> &names) const {
  std::lock_guard<std::mutex> guard(lock);
  std::vector<std::string> found;
  for (const Call &call : calls)
    if (names.empty() ||
        std::find(names.begin(), names.end(), call.name) != names.end())
      found.push_back(call.text);
  return found;
}
