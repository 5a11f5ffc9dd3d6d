// Measures hooked calls, the same calls directly to the runtime, and
// yardsticks, while the application keeps some objects.

#include "bench/hooks/Application.h"
#include "bench/hooks/Cases.h"
#include "bench/null/NullRuntime.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace corvane::bench;

static int threads = 1;

void corvane::bench::setThreadCount(int count) { threads = count; }

int corvane::bench::threadCount() { return threads; }

// Takes "--name=number" out of the arguments; a default if it is not there.
static int takeOption(int &argc, char **argv, const char *name, int value) {
  const std::size_t length = std::strlen(name);
  for (int i = 1; i < argc; ++i)
    if (std::strncmp(argv[i], name, length) == 0 && argv[i][length] == '=') {
      value = std::atoi(argv[i] + length + 1);
      for (--argc; i < argc; ++i)
        argv[i] = argv[i + 1];
    }
  return value;
}

int main(int argc, char **argv) {
  const int alive = takeOption(argc, argv, "--alive", 1);
  setThreadCount(takeOption(argc, argv, "--threads", 1));
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    std::fputs("also: --alive=OBJECTS --threads=THREADS\n", stderr);
    return 1;
  }
  const LoadedAgent agent;
  const Population population(static_cast<std::size_t>(alive));
  addArgumentCases();
  addLaunchCases();
  addObjectCases();
  addProgramCases();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
