// What becomes of the findings of a tuning job.

#pragma once

#include "launch/Tuning.h"
#include "session/LaunchHistory.h"

#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// Tells the run record and the raw timing log what a job finds, and decides
/// the configuration at the end. On the tuning thread.
class JobReport final : public TuningListener {
public:
  /// \p ofConfiguration belongs to \p process. \p versionNames are the job's
  /// versions in their order, \p variantVerdicts what the configuration's line
  /// says.
  JobReport(std::shared_ptr<Tuning> process,
            MeasuredConfiguration &ofConfiguration,
            std::vector<std::string> versionNames,
            std::vector<VariantVerdict> variantVerdicts);

  ~JobReport() override;

  void sampled(const PlannedRun &run, double microseconds) override;
  void checked(unsigned version, const BufferContents::Check &check) override;
  void ended(TuningEnd end, const MeasuringPlan &plan,
             TuningBudget::Duration added) override;

private:
  void conclude(TuningEnd end, const MeasuringPlan &plan,
                TuningBudget::Duration added);
  void forbidDifferent(const MeasuringPlan &plan);
  void decideBy(const MeasuringPlan &plan);

  const std::shared_ptr<Tuning> tuning;
  MeasuredConfiguration &configuration;
  const std::uint32_t number;
  const std::vector<std::string> versions;
  const std::vector<VariantVerdict> verdicts;
  const std::shared_ptr<LaunchRecord> rows;
  bool hasSamples = false;
  bool hasEnded = false;
};

} // namespace corvane
