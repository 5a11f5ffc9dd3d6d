// Prints a line for people and one for scripts, and counts wrong values.

#include "examples/common/Report.h"

#include <cmath>
#include <cstdio>
#include <utility>

using namespace examples;

Report::Report(std::string name, const std::string &task)
    : example(std::move(name)) {
  std::printf("%s: %s\n", example.c_str(), task.c_str());
}

void Report::add(const std::string &launch, const Timing &timing, size_t wrong,
                 size_t values) {
  std::printf("  %-12s %3zu launches of %9.3f ms, ", launch.c_str(),
              timing.launches, timing.meanMicroseconds / 1000.);
  if (wrong == 0)
    std::printf("all %zu values right\n", values);
  else
    std::printf("%zu of %zu values WRONG\n", wrong, values);
  std::printf("result example=%s launch=%s launches=%zu mean_us=%.3f wrong=%zu "
              "of=%zu\n",
              example.c_str(), launch.c_str(), timing.launches,
              timing.meanMicroseconds, wrong, values);
  std::fflush(stdout);
  if (wrong != 0)
    std::fprintf(stderr, "%s: the launch '%s' gave %zu wrong values of %zu\n",
                 example.c_str(), launch.c_str(), wrong, values);
  allRight = allRight && wrong == 0;
}

size_t examples::countFar(const std::vector<float> &got,
                          const std::vector<double> &wanted, double tolerance) {
  size_t far = got.size() == wanted.size() ? 0 : 1;
  for (size_t i = 0; i < got.size() && i < wanted.size(); ++i)
    far +=
        std::abs(static_cast<double>(got[i]) - wanted[i]) <= tolerance ? 0 : 1;
  return far;
}
