// A run record with every kind of line.

#pragma once

#include "results/runs/RunLines.h"

#include <limits>
#include <vector>

namespace corvane::test {

inline ProcessLine exampleProcess() {
  ProcessLine line;
  line.library = "1.0.0";
  line.program = "/opt/app/solve";
  line.host = "node7";
  line.pid = 4711;
  line.start = "2024-02-29T23:59:58Z";
  line.rank = 3;
  line.settings = {{"CORVANE_SAMPLES", "5"}, {"CORVANE_TUNE", "tuned"}};
  return line;
}

inline DeviceLine exampleDevice() {
  DeviceLine line;
  line.name = "cpu-haswell";
  line.vendor = "Maker";
  line.version = "OpenCL 3.0";
  line.driver = "3.1";
  line.type = "CPU";
  line.units = 16;
  line.localMemory = 524288;
  return line;
}

inline ProgramLine exampleProgram() {
  ProgramLine line;
  line.hash = "0123abcd";
  line.options = "-DN=4 \"-I a b\"";
  line.kernels = {{"matmul", {"g0S4", "l0S2"}}, {"fill", {}}};
  line.lookAlikes = {{"matmul_coarsed_g4", "an item has too few numbers"}};
  line.spills = true;
  return line;
}

inline ConfigurationLine exampleConfiguration(std::uint32_t number = 0) {
  ConfigurationLine line;
  line.configuration = number;
  line.kernel = "matmul";
  line.sizes.dimensions = 2;
  line.sizes.global = {1022, 512, 0};
  line.sizes.local = {2, 4, 0};
  line.variants = {{"g0S4", "1022 is not a multiple of 16"}, {"l0S2", ""}};
  return line;
}

inline CheckLine exampleCheck() {
  CheckLine line;
  line.version = "l0S2";
  line.result = CheckResult::Different;
  line.argument = 2;
  line.element = 17;
  line.expected = "1.5";
  line.actual = "nan";
  return line;
}

inline DecisionLine exampleDecision() {
  DecisionLine line;
  line.versions = {{"", 12.5, 7, std::nullopt, false},
                   {"l0S2", 50.25, 2, std::nullopt, true},
                   {"g0S4", 12.75, 7,
                    RatioInterval{0.5, std::numeric_limits<double>::infinity()},
                    false}};
  return line;
}

inline EndLine exampleEnd() {
  EndLine line;
  line.launches = 100;
  line.tunedLaunches = 16;
  line.byVersion = {{0, "", 96}, {0, "l0S2", 4}};
  line.secondsAdded = 0.25;
  return line;
}

inline std::vector<RunLine> exampleLines() {
  return {exampleProcess(),
          exampleDevice(),
          exampleProgram(),
          exampleConfiguration(),
          SampleLine{0, "", 12.5, true},
          SampleLine{0, "l0S2", 50.25, false},
          SampleLine{0, "l0S2", 48.5, false, 0},
          CheckLine{0, "", CheckResult::Equal, 0, 0, "", ""},
          exampleCheck(),
          exampleDecision(),
          exampleEnd()};
}

} // namespace corvane::test
