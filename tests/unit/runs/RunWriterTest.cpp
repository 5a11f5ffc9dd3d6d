// Tests of the text of each line of a run record, byte for byte.

#include "results/runs/RunWriter.h"

#include "Examples.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;

TEST(RunWriter, WritesTheProcess) {
  EXPECT_EQ(lineText(exampleProcess()),
            R"({"kind":"process","format":"corvane-run","version":1,)"
            R"("library":"1.0.0","program":"/opt/app/solve","host":"node7",)"
            R"("pid":4711,"start":"2024-02-29T23:59:58Z","rank":3,)"
            R"("settings":{"CORVANE_SAMPLES":"5","CORVANE_TUNE":"tuned"}})"
            "\n");
}

TEST(RunWriter, WritesTheDevice) {
  EXPECT_EQ(lineText(exampleDevice()),
            R"({"kind":"device","device":0,"name":"cpu-haswell",)"
            R"("vendor":"Maker","version":"OpenCL 3.0","driver":"3.1",)"
            R"("type":"CPU","units":16,"localMemory":524288})"
            "\n");
}

TEST(RunWriter, WritesTheProgram) {
  EXPECT_EQ(lineText(exampleProgram()),
            R"({"kind":"program","program":0,"hash":"0123abcd",)"
            R"("options":"-DN=4 \"-I a b\"","kernels":[{"kernel":"matmul",)"
            R"("variants":["g0S4","l0S2"]},{"kernel":"fill","variants":[]}],)"
            R"("lookAlikes":[{"name":"matmul_coarsed_g4",)"
            R"("reason":"an item has too few numbers"}],"spills":true})"
            "\n");
}

TEST(RunWriter, WritesTheConfiguration) {
  EXPECT_EQ(lineText(exampleConfiguration()),
            R"({"kind":"configuration","configuration":0,"program":0,)"
            R"("device":0,"kernel":"matmul","global":[1022,512],)"
            R"("local":[2,4],"variants":[{"spec":"g0S4",)"
            R"("refusal":"1022 is not a multiple of 16"},{"spec":"l0S2"}]})"
            "\n");
}

TEST(RunWriter, WritesAConfigurationThatIsNotTuned) {
  ConfigurationLine line = exampleConfiguration();
  line.sizes.local = {};
  line.variants.clear();
  line.untunable = "the kernel prints";
  EXPECT_THAT(lineText(line), HasSubstr(R"("local":null,"variants":[],)"
                                        R"("untunable":"the kernel prints"})"));
}

TEST(RunWriter, WritesSamples) {
  EXPECT_EQ(lineText(SampleLine{7, "", 0.125, true}),
            R"({"kind":"sample","configuration":7,"version":"baseline",)"
            R"("microseconds":0.125,"warmUp":true})"
            "\n");
  EXPECT_EQ(lineText(SampleLine{7, "g0S4", 1e6, false}),
            R"({"kind":"sample","configuration":7,"version":"g0S4",)"
            R"("microseconds":1e+06})"
            "\n");
  EXPECT_EQ(lineText(SampleLine{7, "g0S4", 2.5, false, 3}),
            R"({"kind":"sample","configuration":7,"version":"g0S4",)"
            R"("microseconds":2.5,"repeats":3})"
            "\n");
}

TEST(RunWriter, WritesChecks) {
  CheckLine line = exampleCheck();
  EXPECT_EQ(lineText(line),
            R"({"kind":"check","configuration":0,"version":"l0S2",)"
            R"("result":"different","argument":2,"element":17,)"
            R"("expected":"1.5","actual":"nan"})"
            "\n");
  line.result = CheckResult::WithinBound;
  EXPECT_THAT(lineText(line), HasSubstr(R"("result":"within bound","argu)"));
  line.result = CheckResult::Equal;
  EXPECT_THAT(lineText(line), HasSubstr(R"("result":"equal"})"));
}

TEST(RunWriter, WritesTheDecision) {
  EXPECT_EQ(lineText(exampleDecision()),
            R"({"kind":"decision","configuration":0,"winner":"baseline",)"
            R"("versions":[{"version":"baseline","median":12.5,"samples":7},)"
            R"({"version":"l0S2","median":50.25,"samples":2,"dropped":true},)"
            R"({"version":"g0S4","median":12.75,"samples":7,)"
            R"("interval":[0.5,null]}]})"
            "\n");
}

TEST(RunWriter, WritesTheEnd) {
  EXPECT_EQ(lineText(exampleEnd()),
            R"({"kind":"end","launches":100,"tunedLaunches":16,)"
            R"("byVersion":[{"configuration":0,"version":"baseline",)"
            R"("launches":96},{"configuration":0,"version":"l0S2",)"
            R"("launches":4}],"secondsAdded":0.25})"
            "\n");
}

TEST(RunWriter, KeepsAnyBytesOnOneLine) {
  ProcessLine line;
  line.program = "a\nb\"\\\xFF\x01";
  line.settings = {{"X\n", "\n\xC0"}};
  const std::string text = lineText(line);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
  EXPECT_THAT(text, HasSubstr("\"a\\nb\\\"\\\\\xEF\xBF\xBD\\u0001\""));
}
