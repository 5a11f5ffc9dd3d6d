// Puts a file in the place of standard error, and reads it.

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
  // The file is open for appending, so the next write goes to its new start.
  if (!text.empty())
    check(test::writeBytes(path, ""), "the error text can be emptied");
  return text;
}
