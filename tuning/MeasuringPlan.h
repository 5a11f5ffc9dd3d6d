// Decides which version of a kernel is run next while versions are measured.

#pragma once

#include "tuning/OutputComparison.h"

#include "llvm/ADT/ArrayRef.h"

#include <cstdint>
#include <optional>
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
};

/// The order of runs for one kernel with sizes on a device, and their times.
///
/// First the application's kernel runs for a reference, then every candidate
/// runs once without counting, and the kernel once more, so that what differs
/// from itself is known even if no candidate is left. Rounds in rotating
/// order follow, so that no version always runs after the same other one, until
/// every version has its samples. Outputs are compared after a version's first
/// run and its last. Not for several threads at once.
class MeasuringPlan {
public:
  /// \p candidates versions beside the application's kernel, \p samples (at
  /// least 1) for each. Nothing is compared unless \p verified.
  MeasuringPlan(unsigned candidates, unsigned samples, bool verified);

  /// The run to make now; nothing when the plan is through. Hand in what came
  /// of it before the next.
  std::optional<PlannedRun> next();

  /// The run was over in \p microseconds; nothing if its time is not known.
  void completed(const PlannedRun &run, std::optional<double> microseconds);
  /// The output of a compared run; call after completed.
  void compared(const PlannedRun &run, Equality equality);
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
  /// Microseconds of the runs that count, in the order of running.
  llvm::ArrayRef<double> samples(unsigned version) const {
    return versions[version].samples;
  }

private:
  struct Version {
    VersionFate fate = VersionFate::Measured;
    bool alwaysEqual = true;
    std::vector<double> samples;
  };
  std::optional<PlannedRun> nextWarmUp();
  std::optional<PlannedRun> nextSample();
  bool isInPlay(unsigned version) const;
  bool hasRival() const;
  void dropIfSlow(unsigned version);

  std::vector<Version> versions; ///< 0 is the application's kernel
  const unsigned wanted;         ///< samples a version
  const bool verifies;
  unsigned warmUps = 0; ///< handed out
  unsigned round = 0;
  unsigned turn = 0; ///< within the round
};

} // namespace corvane
