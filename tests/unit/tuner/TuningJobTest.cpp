// Measuring the versions of one launch without the application's noticing.

#include "tuner/TuningJob.h"
#include "tests/unit/tuner/SmallRuntime.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using namespace corvane;
using namespace corvane::test;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {
constexpr ElementType floats{ElementType::Kind::Floating, 4};

/// What a job told, in words.
struct Told {
  std::vector<std::string> checks;
  std::vector<unsigned> sampled; ///< versions whose samples count
  int warmUps = 0;
  std::optional<TuningEnd> end;
  std::vector<VersionFate> fates;
  std::size_t statusesAtEnd = 0;
};

class TuningJobTest : public testing::Test {
protected:
  TuningJobTest() : input{{1, 2, 3, 4}}, output{{0, 0, 0, 0}} {
    original.body = [this] { square(0.0F); };
    variant.body = original.body;
  }

  void square(float error) {
    for (std::size_t i = 0; i != input.values.size(); ++i)
      output.values[i] = input.values[i] * input.values[i];
    output.values.back() += error;
  }

  void run(Tolerance tolerance = {}) {
    TunedLaunch launch;
    launch.queue = Owned<cl_command_queue>(runtime.queue());
    launch.versions.resize(2);
    launch.versions[0].kernel = Owned<cl_kernel>(original.handle());
    launch.versions[1].name = "g0S2";
    launch.versions[1].kernel = Owned<cl_kernel>(variant.handle());
    launch.buffers.push_back(
        {Owned<cl_mem>(input.handle()), 4 * sizeof(float), 0, floats});
    launch.buffers.push_back(
        {Owned<cl_mem>(output.handle()), 4 * sizeof(float), 2, floats});
    launch.done = Owned<cl_event>(done.handle());
    TuningJob(std::move(launch), 3, tolerance, budget,
              std::make_unique<Listener>(told, done))
        .run();
  }

  /// What the application may not see: changed buffers, kept objects.
  void expectNoTrace() const {
    EXPECT_THAT(input.values, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(output.values, ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(input.references, 0);
    EXPECT_EQ(output.references, 0);
    EXPECT_EQ(original.references, 0);
    EXPECT_EQ(variant.references, 0);
    EXPECT_EQ(runtime.queueReferences, 0);
    EXPECT_EQ(runtime.openEvents, 0);
    EXPECT_EQ(done.references, 0);
    EXPECT_THAT(done.statuses, ElementsAre(CL_COMPLETE));
    EXPECT_EQ(told.statusesAtEnd, 0U) << "the application's run came too soon";
  }

  SmallRuntime runtime;
  SmallBuffer input;
  SmallBuffer output;
  SmallKernel original;
  SmallKernel variant;
  SmallUserEvent done;
  Told told;
  std::shared_ptr<TuningBudget> budget = std::make_shared<TuningBudget>();

private:
  struct Listener : TuningListener {
    Listener(Told &hears, SmallUserEvent &event) : told(hears), done(event) {}
    void sampled(const PlannedRun &run, double) override {
      if (run.purpose != PlannedRun::Purpose::Sample)
        ++told.warmUps;
      else
        told.sampled.push_back(run.version);
    }
    void checked(unsigned version,
                 const BufferContents::Check &check) override {
      std::string text = std::to_string(version);
      text += check.equality == Equality::Equal ? " equal" : " not equal";
      if (check.difference)
        text += ": argument " + std::to_string(check.argument) + " element " +
                std::to_string(check.difference->element) + " " +
                check.difference->reference + " " + check.difference->output;
      told.checks.push_back(text);
    }
    void ended(TuningEnd end, const MeasuringPlan &plan,
               TuningBudget::Duration) override {
      told.end = end;
      told.fates = {plan.fate(0), plan.fate(1)};
      told.statusesAtEnd = done.statuses.size();
    }
    Told &told;
    SmallUserEvent &done;
  };
};
} // namespace

TEST_F(TuningJobTest, MeasuresEveryVersionAndLeavesNoTrace) {
  run();
  EXPECT_EQ(told.end, TuningEnd::Measured);
  EXPECT_THAT(told.sampled, ElementsAre(0, 1, 1, 0, 0, 1));
  EXPECT_EQ(told.warmUps, 3);
  EXPECT_THAT(told.checks, SizeIs(4));
  EXPECT_THAT(told.checks, Each(HasSubstr(" equal")));
  expectNoTrace();
}

TEST_F(TuningJobTest, GivesEachVersionTheContentsThatTheApplicationLeft) {
  std::vector<float> seen;
  const auto increment = [&] {
    seen.push_back(input.values[0]);
    ++input.values[0];
  };
  original.body = increment;
  variant.body = increment;
  run();
  EXPECT_THAT(seen, Each(1.0F));
  EXPECT_THAT(told.checks, Each(HasSubstr(" equal")));
  expectNoTrace();
}

TEST_F(TuningJobTest, TellsWhereAWrongVersionDiffersAndDropsIt) {
  variant.body = [this] { square(0.5F); };
  run();
  EXPECT_THAT(told.checks,
              testing::Contains("1 not equal: argument 2 element 3 16 16.5"));
  EXPECT_EQ(told.fates[1], VersionFate::Different);
  EXPECT_EQ(variant.runs, 1);
  expectNoTrace();
}

TEST_F(TuningJobTest, SeesAVersionThatWritesNothing) {
  variant.body = nullptr;
  run();
  EXPECT_EQ(told.fates[1], VersionFate::Different);
  expectNoTrace();
}

TEST_F(TuningJobTest, AllowsTheLastBitWithABoundOnly) {
  variant.body = [this] {
    square(0.0F);
    output.values[1] =
        std::nextafter(output.values[1], std::numeric_limits<float>::max());
  };
  run(Tolerance{Tolerance::Mode::Bound, 1e-5});
  EXPECT_EQ(told.fates[1], VersionFate::Measured);
  EXPECT_THAT(told.checks, testing::Contains(HasSubstr("1 not equal")));
  expectNoTrace();
}

TEST_F(TuningJobTest, DropsAVersionThatIsOffByTheLastBitWithoutOne) {
  variant.body = [this] {
    square(0.0F);
    output.values[1] =
        std::nextafter(output.values[1], std::numeric_limits<float>::max());
  };
  run();
  EXPECT_EQ(told.fates[1], VersionFate::Different);
}

TEST_F(TuningJobTest, EndsWhenTheOriginalDiffersFromItself) {
  original.body = [this] { square(static_cast<float>(original.runs)); };
  variant.body = [this] { square(1.0F); };
  run();
  EXPECT_EQ(told.fates[0], VersionFate::Different);
  EXPECT_THAT(told.sampled, IsEmpty());
  expectNoTrace();
}

TEST_F(TuningJobTest, GoesOnWithoutAVersionThatTheRuntimeRefuses) {
  variant.launches = false;
  run();
  EXPECT_EQ(told.fates[1], VersionFate::Failed);
  expectNoTrace();
}

TEST_F(TuningJobTest, RestoresAfterARunThatFailed) {
  variant.succeeds = false;
  variant.body = [this] { square(7.0F); };
  run();
  EXPECT_EQ(told.fates[1], VersionFate::Failed);
  expectNoTrace();
}

TEST_F(TuningJobTest, CountsNoRunWithoutCounters) {
  runtime.hasTimes = false;
  run();
  EXPECT_THAT(told.sampled, IsEmpty());
  EXPECT_EQ(told.warmUps, 0);
  EXPECT_EQ(told.end, TuningEnd::Measured);
  expectNoTrace();
}

TEST_F(TuningJobTest, CountsNoRunWhoseCountersStandStill) {
  variant.nanoseconds = 0;
  run();
  EXPECT_THAT(told.sampled, Each(0U));
  expectNoTrace();
}

TEST_F(TuningJobTest, ComparesNothingWhereTheOriginalChangesNothing) {
  original.body = nullptr;
  variant.body = nullptr;
  run();
  EXPECT_EQ(told.end, TuningEnd::Unchanged);
  EXPECT_EQ(original.runs, 1);
  EXPECT_EQ(variant.runs, 0);
  expectNoTrace();
}

TEST_F(TuningJobTest, MeasuresWhatChangesNothingWhereNothingIsCompared) {
  original.body = nullptr;
  variant.body = nullptr;
  run(Tolerance{Tolerance::Mode::Off, 0.0});
  EXPECT_EQ(told.end, TuningEnd::Measured);
  expectNoTrace();
}

TEST_F(TuningJobTest, StopsWhenTheTimeIsSpent) {
  budget->limit = std::chrono::seconds(1);
  runtime.onWrite = [this] {
    budget->spent = TuningBudget::Duration(std::chrono::seconds(2)).count();
  };
  run();
  EXPECT_EQ(told.end, TuningEnd::OutOfTime);
  EXPECT_EQ(original.runs, 1);
  expectNoTrace();
}

TEST_F(TuningJobTest, RunsNothingOnceTheTimeIsSpent) {
  budget->limit = std::chrono::seconds(0);
  run();
  EXPECT_EQ(told.end, TuningEnd::OutOfTime);
  EXPECT_EQ(original.runs, 0);
  expectNoTrace();
}

TEST_F(TuningJobTest, StopsAtTheEndOfTuning) {
  original.body = [this] {
    square(0.0F);
    stopTuning();
  };
  run();
  resumeTuning();
  EXPECT_EQ(told.end, TuningEnd::OutOfTime);
  EXPECT_EQ(original.runs, 1);
  expectNoTrace();
}

TEST_F(TuningJobTest, FailsTheApplicationsRunRatherThanGiveItSpoiledBuffers) {
  runtime.writesWork = false;
  run();
  EXPECT_EQ(told.end, TuningEnd::Failed);
  EXPECT_THAT(done.statuses, ElementsAre(testing::Lt(0)));
}

TEST_F(TuningJobTest, LetsTheApplicationsRunGoIfItNeverRuns) {
  {
    TunedLaunch launch;
    launch.versions.resize(1);
    launch.done = Owned<cl_event>(done.handle());
    const TuningJob job(std::move(launch), 3, {}, budget, nullptr);
  }
  EXPECT_THAT(done.statuses, ElementsAre(CL_COMPLETE));
  EXPECT_EQ(done.references, 0);
}
