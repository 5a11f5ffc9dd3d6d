// Numbers as an application may have its streams write them.

#pragma once

#include <locale>
#include <string>

namespace corvane::test {

/// Digits in groups of three: "-1001" becomes "-1.001".
struct GroupedDigits : std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

} // namespace corvane::test
