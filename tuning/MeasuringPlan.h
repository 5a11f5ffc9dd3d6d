// Decides which version of a kernel is run next while versions are measured.

#pragma once

#include "results/runs/CountedSamples.h"
#include "results/runs/Decision.h"
#include "tuning/OutputComparison.h"

#include "llvm/ADT/ArrayRef.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// What came of a version while it was measured.
enum class VersionFate : std::uint8_t {
  Measured,  ///< or still being measured
  Slow,      ///< dropped: its first two samples were hopeless
  Different, ///< its output differs from the reference
  Failed,    ///< the runtime refused a run, or told the time of none
};

/// One run that a plan asks for.
struct PlannedRun {
  enum class Purpose : std::uint8_t {
    Reference, ///< the original; what it writes is the reference from then on
    WarmUp,    ///< does not count
    Sample,
  };

  unsigned version; ///< 0 is the application's kernel
  Purpose purpose;
  bool compared; ///< whether its output is to be compared with the reference
  /// The sample of the version, from 0, that the run repeats. None: the run
  /// makes a sample.
  std::optional<std::size_t> repeats = std::nullopt;
};

/// The order of runs for one kernel with sizes on a device, and their times.
///
/// First the application's kernel runs for a reference, then every candidate
/// runs once without counting, and the kernel once more, so that what differs
/// from itself is known even if no candidate is left. Rounds in rotating
/// order follow, so that no version always runs after the same other one, until
/// every version has its samples: the first pass. Outputs are compared after a
/// version's first run and the last of each pass.
///
/// If the samples are too disturbed for a decision, further passes repeat those
/// of the original and of the versions that may still win; sampleOf makes one
/// time of the runs of a sample. A decision is tried after the passes 1, 3, 9
/// and 27, and no pass begins once all runs, with what is copied and compared
/// between them, have taken half a minute.
/// Not for several threads at once.
class MeasuringPlan {
public:
  /// The names of the \p versions: the application's kernel, whose name is
  /// empty, and the candidates. \p samples (at least 1) for each. Nothing is
  /// compared unless \p verified.
  MeasuringPlan(std::vector<std::string> versions, unsigned samples,
                bool verified);

  /// The run to make now; nothing when the plan is through. Hand in what came
  /// of it before the next.
  std::optional<PlannedRun> next();

  /// The run was over in \p microseconds; nothing if its time is not known.
  void completed(const PlannedRun &run, std::optional<double> microseconds);
  /// The output of a compared run; call after completed.
  void compared(const PlannedRun &run, Equality equality);
  /// How long all of it has taken so far.
  void took(std::chrono::nanoseconds soFar) { spent = soFar; }
  /// The run could not be made.
  void failed(const PlannedRun &run);

  /// False if the application's kernel, on the same input, did not write the
  /// same twice, or failed.
  bool isReproducible() const { return fate(0) == VersionFate::Measured; }
  VersionFate fate(unsigned version) const { return versions[version].fate; }
  /// Whether outputs were equal to the last bit whenever they were compared.
  bool alwaysEqual(unsigned version) const {
    return versions[version].alwaysEqual;
  }
  /// Microseconds of the samples that count, in their order.
  llvm::ArrayRef<double> samples(unsigned version) const {
    return versions[version].samples;
  }

  /// The decision by the samples that there are, with the versions in their
  /// order. It is for the original if no candidate is left, and none if the
  /// best version was not compared a second time.
  Decision decide() const;

private:
  struct Version {
    std::string name;
    VersionFate fate = VersionFate::Measured;
    bool alwaysEqual = true;
    unsigned comparisons = 0;
    SampleRuns runs;
    std::vector<double> samples; ///< by all runs
  };
  std::optional<PlannedRun> nextWarmUp();
  std::optional<PlannedRun> nextSample();
  std::optional<PlannedRun> nextRepeat();
  bool isInPlay(unsigned version) const;
  bool hasRival() const;
  void dropIfSlow(Version &version);
  void endPass();
  std::vector<unsigned> whoMayStillWin() const;

  std::vector<Version> versions; ///< 0 is the application's kernel
  const unsigned wanted;         ///< samples a version
  const bool verifies;
  /// The original and those that may still win; all of them at first.
  std::vector<unsigned> repeated;
  bool isThrough = false;
  std::chrono::nanoseconds spent{0};
  unsigned warmUps = 0; ///< handed out
  unsigned passes = 0;  ///< that are over
  unsigned round = 0;   ///< within the pass
  unsigned turn = 0;    ///< within the round
};

} // namespace corvane
