// What this process has found out about its kernels while it tunes.

#pragma once

#include "launch/TuneSettings.h"
#include "results/LaunchSizes.h"
#include "results/runs/RunLines.h"
#include "session/TuningRun.h"
#include "tuner/TuningJob.h"

#include "llvm/ADT/ArrayRef.h"

#include <CL/cl.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

namespace corvane {

/// A kernel with sizes on a device.
struct MeasuredConfiguration {
  std::uint32_t program = 0; ///< as the run record numbers them
  std::uint32_t device = 0;
  std::string kernel;
  LaunchSizes sizes;

  // The rest is guarded by the lock of Tuning.
  std::uint32_t number = 0; ///< of the line that tells it at present
  enum class State : std::uint8_t {
    New,       ///< no line of the record tells it
    Untunable, ///< for a reason that the record tells
    Measuring, ///< a job is under way: the original runs meanwhile
    Over,      ///< it is not measured any more
  };
  State state = State::New;
  std::string untunable;  ///< the reason
  std::string winner;     ///< spec text; empty: the original
  unsigned postponed = 0; ///< how often
};

/// A program whose kernels were launched.
struct TunedProgram {
  std::uint32_t number = 0; ///< in the run record
  /// Why its kernels cannot run more than once; empty when they can.
  std::string obstacle;
};

/// All that tuning remembers between launches. Shared by the state and the jobs
/// under way, which may outlive it.
///
/// Configurations live as long as this. The lock is a leaf lock.
class Tuning {
public:
  Tuning(TuneSettings fromEnvironment,
         std::shared_ptr<LaunchHistory> launchHistory);

  const TuneSettings settings;
  const std::shared_ptr<TuningBudget> budget;
  const std::shared_ptr<LaunchHistory> history;
  TuningRun run;

  /// The configuration of a launch, new or known; null once there are too many
  /// to remember another.
  MeasuredConfiguration *configuration(std::uint32_t program,
                                       const std::string &kernel,
                                       std::uint32_t device,
                                       const LaunchSizes &sizes);

  /// Counts a launch by the version that ran; the empty text is the original.
  void countVersion(const MeasuredConfiguration &of,
                    const std::string &version);

  MeasuredConfiguration::State stateOf(const MeasuredConfiguration &of);
  /// The version that launches run now; empty: the original.
  std::string winnerOf(const MeasuredConfiguration &of);

  /// Has the record tell the configuration: as one that is measured from now
  /// on, or, with \p untunable, as one that cannot be. What the record says
  /// already is not said again.
  void tell(MeasuredConfiguration &of, std::vector<VariantVerdict> variants,
            const std::string &untunable);
  /// Measuring found that the launch is not fit for it. Another one may be; but
  /// after a few of them the configuration is not measured any more.
  void postpone(MeasuredConfiguration &of, std::vector<VariantVerdict> variants,
                const std::string &untunable);
  /// The end of measuring. A winner that was forbidden meanwhile is none.
  void decide(MeasuredConfiguration &of, const std::string &winner);

  /// No variant is left to be measured. Where one was, for other sizes, the
  /// record tells that the original is chosen.
  void decideForOriginal(MeasuredConfiguration &of,
                         llvm::ArrayRef<VariantVerdict> variants);

  /// From now on no launch of the program runs the version of the kernel, or
  /// any variant of it.
  void forbid(const MeasuredConfiguration &seenIn, const std::string &version);
  void forbidAll(const MeasuredConfiguration &seenIn);
  bool isForbidden(const MeasuredConfiguration &of, const std::string &version);
  bool isUnrepeatable(const MeasuredConfiguration &of);

  /// Known devices and programs, by handle and by hash, and the programs of
  /// kernels without a record. Hold the agent lock.
  std::unordered_map<cl_device_id, std::uint32_t> devices;
  std::map<std::string, TunedProgram, std::less<>> programs;
  std::unordered_set<cl_program> toldPrograms;

private:
  using KernelKey = std::pair<std::uint32_t, std::string>;
  using Key =
      std::tuple<std::uint32_t, std::string, std::uint32_t, LaunchSizes>;
  void dropWinner(const MeasuredConfiguration &seenIn,
                  const std::string *version);

  std::mutex lock;
  std::map<Key, MeasuredConfiguration> configurations;
  std::map<KernelKey, std::set<std::string>> forbidden;
  std::set<KernelKey> unrepeatable;
};

} // namespace corvane
