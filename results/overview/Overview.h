// What any number of runs have found, put together for people. Data only.
//
// Reports, explanations, tables and exports are made from it.

#pragma once

#include "results/profile/ProfileMerge.h"
#include "results/runs/RunReader.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// Where a record comes from, as far as the record itself does not tell.
struct RunOrigin {
  std::string name; ///< of the run's folder or of the file
  /// The words of the command that tuned; empty if that is not known.
  std::vector<std::string> command;
  /// Whether it was made from a raw timing log, which names no device, program
  /// or check.
  bool isLog = false;
};

/// Records and where they come from: two lists of the same length.
struct RunSet {
  std::vector<RunOrigin> origins;
  std::vector<RunRecord> records;

  void add(RunOrigin origin, RunRecord record) {
    origins.push_back(std::move(origin));
    records.push_back(std::move(record));
  }
};

/// One process that tuned, or one log.
struct OverviewRun {
  RunOrigin origin;
  std::optional<ProcessLine> process; ///< none: the record is of no use
  std::optional<EndLine> end;         ///< none: the process was killed
  std::size_t problems = 0;           ///< lines that could not be used
};

/// What became of one version in one configuration.
enum class Verdict {
  Original,
  Winner,
  Faster,       ///< than the original; another version is faster still
  NoDifference, ///< to the original
  Slower,
  Dropped,    ///< after two samples, as hopelessly slow
  TooFew,     ///< samples for a comparison
  Different,  ///< its results were not the original's: it is never used
  Repeatless, ///< the original's own results differ from run to run
  Refused,    ///< its conditions do not accept the sizes
  NotRun,
};

struct OverviewVersion {
  VersionFigures figures; ///< of the samples of all runs
  Agreement check = Agreement::Unknown;
  Verdict verdict = Verdict::NotRun;
  /// In microseconds, those that count, in the order of the records.
  std::vector<double> samples;
  /// The first check that found a difference, or else one within the bound.
  std::optional<CheckLine> difference;
  std::string refusal; ///< why it did not run; empty: it did, or nothing tells
  std::uint64_t launches = 0; ///< of the application that ran this version
};

/// What became of one configuration.
enum class Outcome {
  Faster, ///< a variant is
  NoDifference,
  NothingToChoose, ///< no variant could be compared
  TooFew,          ///< samples for a decision
  NotTuned,
};

/// A kernel with its sizes, on a device.
struct OverviewConfiguration {
  std::size_t device = 0;  ///< index in the overview's devices
  std::size_t program = 0; ///< index in the overview's programs
  std::string kernel;
  LaunchSizes sizes;
  Outcome outcome = Outcome::TooFew;
  std::string winner;         ///< empty: the original
  std::string untunable;      ///< why it was not tuned; empty: it was
  std::uint64_t launches = 0; ///< of the application
  /// The original first if it ran, then by median, those that did not run last.
  std::vector<OverviewVersion> versions;

  /// Null where the original has no samples.
  const OverviewVersion *original() const;
  /// Null where the original is the one to use.
  const OverviewVersion *winning() const;
  /// Microseconds of all launches with the original, and with the version to
  /// use; 0 where its time is not known.
  double originalTime() const;
  double winningTime() const;
};

/// What was built, by its hash.
struct OverviewProgram {
  ProgramLine line; ///< kernels, variants and kernels that look like ones
};

struct Overview {
  std::vector<OverviewRun> runs;
  std::vector<DeviceLine> devices; ///< their numbers are not used
  std::vector<OverviewProgram> programs;
  /// Those with the most kernel time first.
  std::vector<OverviewConfiguration> configurations;

  /// Microseconds of all launches whose time is known, with the originals and
  /// with the versions to use.
  double originalTime() const;
  double winningTime() const;
  /// The part of the kernel time that the winners save, from 0 to 1; none where
  /// no time is known.
  std::optional<double> partSaved() const;
  /// Of the application, in all runs.
  std::uint64_t launches() const;
};

/// Puts the runs together. Samples of the same device, driver, program, kernel
/// and sizes count together, and decide as they do for a profile.
Overview makeOverview(const RunSet &runs);

/// "original", "no difference", ...: how reports and tables say it.
const char *verdictText(Verdict verdict);
const char *outcomeText(Outcome outcome);

} // namespace corvane
