// What a run that tunes leaves in its folder.

#include "tests/behaviour/launch/MeasuredApplication.h"

#include "agent/Environment.h"
#include "tests/behaviour/Calls.h"
#include "tests/support/ErrorCapture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>

using namespace corvane;
using namespace corvane::test;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {
struct TuningRecord : testing::Test {
  void startWithVariant() {
    app.addVariant("g0S4", square);
    app.runtime.takes("k_coarsed_g0S4", {1000});
    app.start();
  }
  MeasuredApplication app;
};
} // namespace

TEST_F(TuningRecord, IsNotMadeWithoutALaunch) {
  startWithVariant();
  app.agent.unload();
  EXPECT_TRUE(std::filesystem::is_empty(app.folder.path()));
}

TEST_F(TuningRecord, TellsProcessDeviceAndProgram) {
  app.program.kernel("k_coarsed_g4", 2);
  app.program.kernel("other_coarsed_g0S2", 2);
  startWithVariant();
  app.run();
  const RunRecord run = app.record();
  ASSERT_TRUE(run.process);
  EXPECT_THAT(run.process->settings,
              Contains(testing::Pair("CORVANE_TUNE", app.folder.text())));
  EXPECT_EQ(run.devices.at(0).name, "device 1");
  EXPECT_EQ(run.devices.at(0).driver, "1.0");
  const ProgramLine &program = run.programs.at(0);
  EXPECT_THAT(program.hash, SizeIs(64));
  ASSERT_THAT(program.kernels, SizeIs(2));
  EXPECT_EQ(program.kernels[0].kernel, "k");
  EXPECT_THAT(program.kernels[0].variants, ElementsAre("g0S4"));
  ASSERT_THAT(program.lookAlikes, SizeIs(2));
  EXPECT_EQ(program.lookAlikes[0].reason, "did you mean g0S4?");
  EXPECT_EQ(program.lookAlikes[1].reason, "there is no kernel \"other\"");
  EXPECT_FALSE(program.spills);
}

// A program with such a log has no variants for launches, but the record says
// why.
TEST_F(TuningRecord, TellsThatAVariantSpills) {
  app.program.log(spillLog);
  startWithVariant();
  app.run();
  EXPECT_TRUE(app.record().programs.at(0).spills);
}

TEST_F(TuningRecord, HasSamplesChecksAndTheDecision) {
  startWithVariant();
  app.run();
  const RunConfiguration measured = app.configuration();
  EXPECT_EQ(measured.line.kernel, "k");
  EXPECT_EQ(sizesText(measured.line.sizes), "64 / 4");
  std::size_t counted = 0;
  std::size_t warmUps = 0;
  for (const SampleLine &sample : measured.samples) {
    EXPECT_EQ(sample.microseconds, sample.version.empty() ? 10.0 : 1.0);
    ++(sample.warmUp ? warmUps : counted);
  }
  EXPECT_EQ(counted, 14U);
  EXPECT_EQ(warmUps, 3U);
  EXPECT_THAT(measured.checks, SizeIs(4));
  ASSERT_TRUE(measured.decision);
  EXPECT_EQ(measured.decision->winner, "g0S4");
  ASSERT_THAT(measured.decision->versions, SizeIs(2));
  EXPECT_EQ(measured.decision->versions[1].median, 1.0);
  EXPECT_EQ(measured.decision->versions[1].samples, 7U);
}

TEST_F(TuningRecord, SaysWhichConditionRefuses) {
  app.addVariant("g0S8", square);
  startWithVariant();
  app.run(80);
  const ConfigurationLine line = app.configuration().line;
  ASSERT_THAT(line.variants, SizeIs(2));
  std::map<std::string, std::string> refusals;
  for (const VariantVerdict &verdict : line.variants)
    refusals[verdict.spec] = verdict.refusal;
  EXPECT_EQ(refusals["g0S4"], "");
  EXPECT_EQ(refusals["g0S8"], "80 is not a multiple of 64");
}

TEST_F(TuningRecord, EndsWithTheCountsOfLaunches) {
  startWithVariant();
  app.run();
  app.run();
  app.run();
  const RunRecord run = app.record(true);
  ASSERT_TRUE(run.end);
  EXPECT_EQ(run.end->launches, 3U);
  EXPECT_EQ(run.end->tunedLaunches, 1U);
  EXPECT_GT(run.end->secondsAdded, 0.0);
  std::map<std::string, std::uint64_t> launches;
  for (const VersionLaunches &part : run.end->byVersion)
    launches[part.version] = part.launches;
  EXPECT_EQ(launches[""], 1U);
  EXPECT_EQ(launches["g0S4"], 2U);
}

TEST_F(TuningRecord, HasARowOfTheRawLogForEachSampleThatCounts) {
  startWithVariant();
  app.run();
  app.agent.unload();
  const std::string log = readBytes(app.runFolder() + "/.auto.csv");
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1 + 14);
  EXPECT_THAT(log, HasSubstr("\nk,64,,,4,,,baseline,10.000\n"));
  EXPECT_THAT(log, HasSubstr("\nk,64,,,4,,,g0S4,1.000\n"));
}

TEST_F(TuningRecord, HasTheConfigurationsOfKernelsWithoutVariants) {
  app.start();
  app.run();
  EXPECT_THAT(app.configuration().line.variants, IsEmpty());
  EXPECT_EQ(app.untunable(), "");
}

namespace {
struct ReportedRun : testing::Test {
  TempFolder location;
  MeasuredApplication app{{{variable::installLocation, location.text()}}};
};
} // namespace

TEST_F(ReportedRun, HasTheFilesOfAutotuning) {
  app.addVariant("g0S4", square);
  app.start();
  app.run();
  app.agent.unload();
  for (const char *name : {"autotune.csv", "main.html", "html/index.html"})
    EXPECT_TRUE(std::filesystem::exists(app.runFolder() + "/" + name)) << name;
}

TEST_F(TuningRecord, OfAFolderThatIsAFileIsToldOnce) {
  startWithVariant();
  std::filesystem::remove_all(app.folder.path());
  ASSERT_TRUE(writeBytes(app.folder.path(), "a file"));
  std::string errors;
  {
    ErrorCapture capture;
    app.run();
    EXPECT_EQ(app.kernelOfNextRun(), "k");
    errors = capture.text();
  }
  EXPECT_EQ(errors, "CV: no run folder could be made in " + app.folder.text() +
                        ": nothing is tuned.\n");
  EXPECT_EQ(app.runtime.bytes(app.output),
            (std::vector<unsigned char>{1, 4, 9, 16}));
}
