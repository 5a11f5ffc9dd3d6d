// Decides which calls of the scripted runtime fail.

#include "tests/support/Answers.h"

#include <algorithm>

using namespace corvane::test;

void Answers::script(const std::string &name, cl_int status,
                     std::optional<std::size_t> nth) {
  std::lock_guard<std::mutex> guard(lock);
  if (status == CL_SUCCESS) {
    rules.erase(
        std::remove_if(rules.begin(), rules.end(),
                       [&](const Rule &rule) { return rule.name == name; }),
        rules.end());
    return;
  }
  if (nth)
    *nth += counts[name];
  rules.push_back({name, status, nth});
}

void Answers::scriptAny(std::size_t nth, cl_int status) {
  std::lock_guard<std::mutex> guard(lock);
  rules.push_back({"", status, total + nth});
}

bool Answers::applies(const Rule &rule, const std::string &name) const {
  if (rule.name.empty())
    return rule.number == total;
  return rule.name == name && (!rule.number || rule.number == counts.at(name));
}

std::optional<cl_int> Answers::next(const std::string &name) {
  std::lock_guard<std::mutex> guard(lock);
  ++counts[name];
  ++total;
  for (const Rule &rule : rules)
    if (applies(rule, name)) {
      if (rule.name.empty())
        failedOfAny = name;
      return rule.status;
    }
  return std::nullopt;
}

std::string Answers::lastOfAny() const {
  std::lock_guard<std::mutex> guard(lock);
  return failedOfAny;
}

std::size_t Answers::count() const {
  std::lock_guard<std::mutex> guard(lock);
  return total;
}
