// What an example prints about its launches and their results.

#pragma once

#include "examples/common/Launch.h"

#include <string>
#include <vector>

namespace examples {

/// Prints one line a row of launches and remembers whether all were right.
class Report {
public:
  /// \p name is the program's, \p task what it computes and where.
  Report(std::string name, const std::string &task);

  /// Prints a line for people and one for scripts, which reads
  /// "result example=... launch=... launches=... mean_us=... wrong=... of=...".
  /// \p launch must be one word.
  void add(const std::string &launch, const Timing &timing, size_t wrong,
           size_t values);

  /// The exit code of the program: 0 when every value was right.
  int exitCode() const { return allRight ? 0 : 1; }

private:
  std::string example;
  bool allRight = true;
};

/// Counts the values of \p got that are not exactly as in \p wanted.
template <typename Value>
size_t countDifferent(const std::vector<Value> &got,
                      const std::vector<Value> &wanted) {
  size_t different = got.size() == wanted.size() ? 0 : 1;
  for (size_t i = 0; i < got.size() && i < wanted.size(); ++i)
    different += got[i] == wanted[i] ? 0 : 1;
  return different;
}

/// Counts the values of \p got that are further than \p tolerance from the
/// exact ones. A value that is no number is far from everything.
size_t countFar(const std::vector<float> &got,
                const std::vector<double> &wanted, double tolerance);

} // namespace examples
