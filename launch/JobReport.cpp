// Turns findings into lines and rows, and samples into a decision.

#include "launch/JobReport.h"

#include "results/runs/Decision.h"
#include "session/LogAppender.h"

#include <cmath>
#include <new>
#include <utility>

using namespace corvane;

JobReport::JobReport(std::shared_ptr<Tuning> process,
                     MeasuredConfiguration &ofConfiguration,
                     std::vector<std::string> versionNames,
                     std::vector<VariantVerdict> variantVerdicts)
    : tuning(std::move(process)), configuration(ofConfiguration),
      number(ofConfiguration.number), versions(std::move(versionNames)),
      verdicts(std::move(variantVerdicts)),
      rows(tuning->history->makeRecord(
          makeLaunchKey(configuration.kernel, configuration.sizes))) {
  const std::lock_guard<std::mutex> guard(tuning->history->lock);
  tuning->history->records.push_back(rows);
}

// A job that was never run decides nothing for good.
JobReport::~JobReport() {
  if (hasEnded)
    return;
  try {
    tuning->decide(configuration, std::string());
  } catch (const std::bad_alloc &) {
    // Then it counts as being measured, and the original runs.
  }
}

void JobReport::sampled(const PlannedRun &run, double microseconds) {
  SampleLine line;
  line.configuration = number;
  line.version = versions[run.version];
  line.microseconds = microseconds;
  line.warmUp = run.purpose != PlannedRun::Purpose::Sample;
  line.repeats = run.repeats;
  tuning->run.add(line);
  if (line.warmUp)
    return;
  hasSamples = true;
  recordTiming(*tuning->history, *rows, versions[run.version],
               static_cast<std::uint64_t>(std::llround(microseconds * 1000.0)));
}

static CheckResult resultOf(Equality equality) {
  switch (equality) {
  case Equality::Equal:
    return CheckResult::Equal;
  case Equality::WithinBound:
    return CheckResult::WithinBound;
  case Equality::Different:
    return CheckResult::Different;
  }
  return CheckResult::Different;
}

void JobReport::checked(unsigned version, const BufferContents::Check &check) {
  CheckLine line;
  line.configuration = number;
  line.version = versions[version];
  line.result = resultOf(check.equality);
  if (check.difference) {
    line.argument = check.argument;
    line.element = check.difference->element;
    line.expected = check.difference->reference;
    line.actual = check.difference->output;
  }
  tuning->run.add(line);
}

void JobReport::forbidDifferent(const MeasuringPlan &plan) {
  if (plan.fate(0) == VersionFate::Different)
    tuning->forbidAll(configuration);
  for (unsigned i = 1; i != versions.size(); ++i)
    if (plan.fate(i) == VersionFate::Different)
      tuning->forbid(configuration, versions[i]);
}

// Samples that are too few for a decision leave the original in its place, and
// the record open for those of other runs.
void JobReport::decideBy(const MeasuringPlan &plan) {
  Decision decision = plan.decide();
  if (decision.decided) {
    DecisionLine line;
    line.configuration = number;
    line.winner = decision.winner;
    line.versions = std::move(decision.versions);
    tuning->run.add(line);
  }
  tuning->decide(configuration, decision.winner);
}

static const char *reasonOf(TuningEnd end) {
  return end == TuningEnd::NoMemory
             ? "there is no memory for copies of its buffers"
             : "the runtime failed while it was measured";
}

void JobReport::ended(TuningEnd end, const MeasuringPlan &plan,
                      TuningBudget::Duration added) {
  conclude(end, plan, added);
  hasEnded = true;
}

void JobReport::conclude(TuningEnd end, const MeasuringPlan &plan,
                         TuningBudget::Duration added) {
  tuning->run.countTuning(std::chrono::duration<double>(added).count(),
                          hasSamples);
  forbidDifferent(plan);
  if (end == TuningEnd::Unchanged)
    return tuning->postpone(configuration, verdicts,
                            "the launch leaves its memory as it was, so that "
                            "results cannot be compared");
  const bool isMeasured =
      end == TuningEnd::Measured || end == TuningEnd::OutOfTime;
  if (isMeasured && plan.fate(0) != VersionFate::Failed)
    return decideBy(plan);
  tuning->tell(configuration, verdicts, reasonOf(end));
  tuning->decide(configuration, std::string());
}
