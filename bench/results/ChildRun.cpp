// Forks, and reads the child's time from a pipe.

#include "bench/results/ChildRun.h"

#include <chrono>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane::bench;

[[noreturn]] static void workAndTell(const std::function<void()> &work,
                                     int pipe) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  work();
  const double seconds =
      std::chrono::duration<double>(Clock::now() - start).count();
  const bool written = write(pipe, &seconds, sizeof seconds) == sizeof seconds;
  _exit(written ? 0 : 1);
}

ChildRun corvane::bench::runInChild(const std::function<void()> &work) {
  ChildRun run;
  int ends[2];
  if (pipe(ends) != 0)
    return run;
  const pid_t child = fork();
  if (child == 0)
    workAndTell(work, ends[1]);
  close(ends[1]);
  const bool received =
      read(ends[0], &run.seconds, sizeof run.seconds) == sizeof run.seconds;
  close(ends[0]);
  int status = 0;
  rusage usage{};
  run.succeeded = child > 0 && wait4(child, &status, 0, &usage) == child &&
                  status == 0 && received;
  run.peakMiB = static_cast<double>(usage.ru_maxrss) / 1024.0;
  return run;
}
