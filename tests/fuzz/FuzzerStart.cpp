// What a fuzzer does before its first input, and a replay need not do.

#include "tests/fuzz/ErrorText.h"

#include <vector>

#include <unistd.h>

using namespace corvane::fuzz;

// Has the fuzzer and the sanitizers write to standard error as it is now,
// because a target may put a file in its place.
static void keepErrorStream(int &count, char **&arguments) {
  streamForFailures = dup(STDERR_FILENO);
  static char option[] = "-close_fd_mask=2";
  static std::vector<char *> all(arguments, arguments + count);
  all.insert(all.begin() + 1, option);
  count = static_cast<int>(all.size());
  all.push_back(nullptr);
  arguments = all.data();
}

extern "C" int LLVMFuzzerInitialize(int *count, char ***arguments) {
  keepErrorStream(*count, *arguments);
  return 0;
}
