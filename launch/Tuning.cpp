// Keeps configurations, their winners and what may not win.

#include "launch/Tuning.h"

#include "session/LaunchHistory.h"

#include <algorithm>
#include <new>
#include <utility>

using namespace corvane;
using State = MeasuredConfiguration::State;

// A program that never launches the same sizes twice must not fill the memory.
static constexpr std::size_t mostConfigurations = 20000;

static std::shared_ptr<TuningBudget> budgetOf(const TuneSettings &settings) {
  auto budget = std::make_shared<TuningBudget>();
  budget->limit = settings.mostTime;
  return budget;
}

Tuning::Tuning(TuneSettings fromEnvironment,
               std::shared_ptr<LaunchHistory> launchHistory)
    : settings(std::move(fromEnvironment)), budget(budgetOf(settings)),
      history(std::move(launchHistory)), run(settings.folder, history) {}

MeasuredConfiguration *Tuning::configuration(std::uint32_t program,
                                             const std::string &kernel,
                                             std::uint32_t device,
                                             const LaunchSizes &sizes) {
  const std::lock_guard<std::mutex> guard(lock);
  const Key key(program, kernel, device, sizes);
  const auto known = configurations.find(key);
  if (known != configurations.end())
    return &known->second;
  if (configurations.size() == mostConfigurations)
    return nullptr;
  MeasuredConfiguration &added = configurations[key];
  added.program = program;
  added.device = device;
  added.kernel = kernel;
  added.sizes = sizes;
  return &added;
}

void Tuning::countVersion(const MeasuredConfiguration &of,
                          const std::string &version) {
  const std::lock_guard<std::mutex> guard(lock);
  try {
    run.countVersion(of.number, version);
  } catch (const std::bad_alloc &) {
    // The launch is made: the application must not take it for one that is not.
  }
}

State Tuning::stateOf(const MeasuredConfiguration &of) {
  const std::lock_guard<std::mutex> guard(lock);
  return of.state;
}

std::string Tuning::winnerOf(const MeasuredConfiguration &of) {
  const std::lock_guard<std::mutex> guard(lock);
  return of.winner;
}

// A reason that holds no more, as that something is in flight, needs another
// line: what cannot be tuned stays so for whoever reads the record.
void Tuning::tell(MeasuredConfiguration &of,
                  std::vector<VariantVerdict> variants,
                  const std::string &untunable) {
  const std::lock_guard<std::mutex> guard(lock);
  const bool isTold = of.state == State::Over ||
                      (of.state == State::Untunable && !untunable.empty());
  if (!isTold) {
    ConfigurationLine line;
    line.program = of.program;
    line.device = of.device;
    line.kernel = of.kernel;
    line.sizes = of.sizes;
    line.variants = std::move(variants);
    line.untunable = untunable;
    of.number = run.add(std::move(line));
    of.untunable = untunable;
  }
  of.state = untunable.empty() ? State::Measuring : State::Untunable;
}

void Tuning::postpone(MeasuredConfiguration &of,
                      std::vector<VariantVerdict> variants,
                      const std::string &untunable) {
  constexpr unsigned mostPostponed = 3;
  tell(of, std::move(variants), untunable);
  const std::lock_guard<std::mutex> guard(lock);
  if (++of.postponed == mostPostponed)
    of.state = State::Over;
}

void Tuning::decide(MeasuredConfiguration &of, const std::string &winner) {
  const std::lock_guard<std::mutex> guard(lock);
  const KernelKey kernel(of.program, of.kernel);
  const auto found = forbidden.find(kernel);
  const bool isOut = unrepeatable.count(kernel) != 0 ||
                     (found != forbidden.end() && found->second.count(winner));
  of.winner = isOut ? std::string() : winner;
  of.state = State::Over;
}

void Tuning::decideForOriginal(MeasuredConfiguration &of,
                               llvm::ArrayRef<VariantVerdict> variants) {
  const bool isTold =
      std::any_of(variants.begin(), variants.end(),
                  [&](const auto &each) { return isForbidden(of, each.spec); });
  decide(of, std::string());
  if (!isTold)
    return;
  DecisionLine line;
  line.configuration = of.number;
  run.add(line);
}

// For all sizes and devices.
void Tuning::dropWinner(const MeasuredConfiguration &seenIn,
                        const std::string *version) {
  for (auto &[key, each] : configurations)
    if (each.program == seenIn.program && each.kernel == seenIn.kernel &&
        (!version || each.winner == *version))
      each.winner.clear();
}

void Tuning::forbid(const MeasuredConfiguration &seenIn,
                    const std::string &version) {
  const std::lock_guard<std::mutex> guard(lock);
  forbidden[{seenIn.program, seenIn.kernel}].insert(version);
  dropWinner(seenIn, &version);
}

void Tuning::forbidAll(const MeasuredConfiguration &seenIn) {
  const std::lock_guard<std::mutex> guard(lock);
  unrepeatable.insert({seenIn.program, seenIn.kernel});
  dropWinner(seenIn, nullptr);
}

bool Tuning::isForbidden(const MeasuredConfiguration &of,
                         const std::string &version) {
  const std::lock_guard<std::mutex> guard(lock);
  const auto found = forbidden.find({of.program, of.kernel});
  return found != forbidden.end() && found->second.count(version) != 0;
}

bool Tuning::isUnrepeatable(const MeasuredConfiguration &of) {
  const std::lock_guard<std::mutex> guard(lock);
  return unrepeatable.count({of.program, of.kernel}) != 0;
}
