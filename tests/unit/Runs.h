// Makes run records for the tests of profiles.

#pragma once

#include "results/runs/RunReader.h"

#include <initializer_list>
#include <string>
#include <utility>

namespace corvane::test {

inline LaunchSizes oneDimension(std::uint64_t global, std::uint64_t local = 0) {
  return {1, {global, 0, 0}, {local, 0, 0}};
}

/// The record of a run on one device with one program.
class MadeRun {
public:
  explicit MadeRun(const std::string &driver = "1",
                   const std::string &hash = "abc") {
    record.process = ProcessLine();
    DeviceLine device;
    device.name = "device";
    device.vendor = "vendor";
    device.driver = driver;
    record.devices[0] = device;
    ProgramLine program;
    program.hash = hash;
    record.programs[0] = program;
  }

  /// When it was made, as "2024-02-29T23:59:58Z", and what CORVANE_VERIFY was.
  MadeRun &verified(const std::string &start, const std::string &verify) {
    record.process->start = start;
    record.process->settings = {{"CORVANE_VERIFY", verify}};
    return *this;
  }

  /// Begins a configuration; the lines made after it belong to it.
  MadeRun &configuration(const std::string &kernel, const LaunchSizes &sizes) {
    const auto number =
        static_cast<std::uint32_t>(record.configurations.size());
    current = &record.configurations[number];
    current->line.configuration = number;
    current->line.kernel = kernel;
    current->line.sizes = sizes;
    return *this;
  }

  /// A variant that takes the sizes.
  MadeRun &accepts(const std::string &variant) {
    current->line.variants.push_back({variant, ""});
    return *this;
  }

  /// \p count samples about \p time, no two of them the same.
  MadeRun &samples(const std::string &version, double time, int count = 7) {
    for (int i = 0; i != count; ++i)
      current->samples.push_back({current->line.configuration, version,
                                  time * (1.0 + 0.001 * ((i * 3) % 7 - 3)),
                                  false});
    return *this;
  }

  MadeRun &warmUp(const std::string &version, double time) {
    current->samples.push_back(
        {current->line.configuration, version, time, true});
    return *this;
  }

  MadeRun &check(const std::string &version, CheckResult result) {
    CheckLine line;
    line.configuration = current->line.configuration;
    line.version = version;
    line.result = result;
    current->checks.push_back(line);
    return *this;
  }

  /// As many as a run to its end makes.
  MadeRun &checks(const std::string &version, CheckResult result) {
    return check(version, result).check(version, result);
  }

  /// Repeats each of seven samples once.
  MadeRun &repeats(const std::string &version, double time) {
    for (std::size_t i = 0; i != 7; ++i)
      current->samples.push_back(
          {current->line.configuration, version, time, false, i});
    return *this;
  }

  MadeRun &decided() {
    current->decision = DecisionLine();
    return *this;
  }

  MadeRun &
  ended(std::initializer_list<std::pair<std::uint32_t, std::uint64_t>> parts) {
    record.end = EndLine();
    for (const auto &[configuration, launches] : parts)
      record.end->byVersion.push_back({configuration, "", launches});
    return *this;
  }

  operator RunRecord() const { return record; }

private:
  RunRecord record;
  RunConfiguration *current = nullptr;
};

} // namespace corvane::test
