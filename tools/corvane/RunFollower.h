// Follows records while programs write them.

#pragma once

#include "llvm/Support/JSON.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace corvane {

/// What the runs that began after the follower was made have told so far.
class RunFollower {
public:
  /// \p known are the runs of before, which are left out.
  RunFollower(std::string tunedFolder, std::set<std::string> known)
      : folder(std::move(tunedFolder)), before(std::move(known)) {}

  /// Reads what was written since the last time.
  void update();

  std::size_t seen() const { return configurations; }
  std::size_t decided() const { return decisions; }
  std::size_t samples() const { return timedRuns; }
  double secondsMeasured() const { return microseconds / 1e6; }
  /// The gain of the best winner, and its kernel; 0 if there is none yet.
  double bestGain() const { return best; }
  const std::string &bestKernel() const { return kernelOfBest; }

private:
  struct Run {
    std::uint64_t position = 0; ///< in the file, in bytes
    std::string half;           ///< the line that is being written
    std::map<std::int64_t, std::string> kernels; ///< by configuration
    std::set<std::int64_t> decided;
  };

  void readMore(const std::string &file, Run &run);
  void takeLine(llvm::StringRef line, Run &run);
  void takeDecision(const llvm::json::Object &line, Run &run);

  const std::string folder;
  const std::set<std::string> before;
  std::map<std::string, Run> runs;
  std::size_t configurations = 0;
  std::size_t decisions = 0;
  std::size_t timedRuns = 0;
  double microseconds = 0.0;
  double best = 0.0;
  std::string kernelOfBest;
};

} // namespace corvane
