// A file in the place of the standard error stream.

#include "tests/fuzz/ErrorText.h"

#include "tests/fuzz/Input.h"
#include "tests/support/Platform.h"
#include "tests/support/TempFolder.h"

#include <cstdio>

using namespace corvane::fuzz;

int corvane::fuzz::streamForFailures = -1;

ErrorText::ErrorText(const std::string &file) : path(file) {
  const int before = test::redirectErrorStream(path.c_str());
  check(before >= 0, "the standard error stream can be redirected");
  if (streamForFailures < 0)
    streamForFailures = before;
  beforeFailing = [] { test::restoreErrorStream(streamForFailures); };
}

std::string ErrorText::take() {
  std::fflush(stderr);
  std::string text = test::readBytes(path);
  // What is written next is appended wherever the end is by then.
  if (!text.empty())
    check(test::writeBytes(path, ""), "the error text can be emptied");
  return text;
}
