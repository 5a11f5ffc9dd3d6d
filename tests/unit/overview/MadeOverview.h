// Makes overviews of made-up runs.

#pragma once

#include "results/overview/Overview.h"
#include "tests/unit/Runs.h"

#include <initializer_list>

namespace corvane::test {

inline Overview overviewOf(std::initializer_list<RunRecord> records) {
  RunSet runs;
  for (const RunRecord &record : records)
    runs.add({"run", {"./solve", "two words"}, false}, record);
  return makeOverview(runs);
}

/// A run with a faster variant, one that makes no difference, one that is
/// wrong, one that does not take the sizes and one that was never measured.
inline RunRecord eventfulRun() {
  MadeRun run;
  run.configuration("scale", oneDimension(1022, 2))
      .samples("", 100.0)
      .check("", CheckResult::Equal)
      .samples("g0S2", 50.0)
      .check("g0S2", CheckResult::Equal)
      .check("g0S2", CheckResult::Equal)
      .samples("g0S4", 100.0)
      .check("g0S4", CheckResult::WithinBound)
      .samples("l0S2", 20.0, 1)
      .decided();
  run.ended({{0, 10}});
  RunRecord record = run;
  RunConfiguration &configuration = record.configurations[0];
  configuration.line.variants = {{"g0S2", ""},
                                 {"g0S4", ""},
                                 {"l0S2", ""},
                                 {"g0S16", "1022 is not a multiple of 256"},
                                 {"c0S2", ""}};
  CheckLine wrong;
  wrong.version = "l0S2";
  wrong.result = CheckResult::Different;
  wrong.argument = 2;
  wrong.element = 17;
  wrong.expected = "1.5";
  wrong.actual = "nan";
  configuration.checks.push_back(wrong);
  record.programs[0].kernels = {{"scale", {"g0S2", "g0S4"}}, {"fill", {}}};
  record.programs[0].lookAlikes = {
      {"scale_coarsed_g4", "an item has too few numbers"}};
  return record;
}

/// The version with this name in the first configuration.
inline const OverviewVersion &versionIn(const Overview &overview,
                                        const std::string &name) {
  static const OverviewVersion none;
  for (const OverviewVersion &version : overview.configurations.at(0).versions)
    if (version.figures.version == name)
      return version;
  return none;
}

} // namespace corvane::test
