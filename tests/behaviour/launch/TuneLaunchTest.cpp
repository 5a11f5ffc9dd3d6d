// What an application gets whose kernels are measured while it runs.

#include "tests/behaviour/launch/MeasuredApplication.h"

#include "agent/Environment.h"
#include "tests/support/ErrorCapture.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstring>
#include <thread>

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {
using Bytes = std::vector<unsigned char>;
const Bytes squares{1, 4, 9, 16};

/// An application with a variant that is ten times as fast as the kernel.
struct WithVariant : testing::Test {
  explicit WithVariant(const Variables &more = {}) : app(more) {}

  void addVariant(KernelBody body = square) {
    app.addVariant("g0S4", std::move(body));
    app.runtime.takes("k_coarsed_g0S4", {1000});
  }
  Bytes output() { return app.runtime.bytes(app.output); }

  /// Runs twice: the second launch must be the application's kernel, and both
  /// must leave what it leaves alone.
  void expectOriginal(const Bytes &expected = squares) {
    EXPECT_EQ(app.run(), CL_COMPLETE);
    EXPECT_EQ(output(), expected);
    EXPECT_EQ(app.kernelOfNextRun(), "k");
    EXPECT_EQ(output(), expected);
  }

  std::vector<CheckResult> checksOf(const std::string &version) {
    std::vector<CheckResult> results;
    for (const CheckLine &check : app.configuration().checks)
      if (check.version == version)
        results.push_back(check.result);
    return results;
  }

  MeasuredApplication app;
};
struct TuneLaunch : WithVariant {};
} // namespace

TEST_F(TuneLaunch, MeasuresAllVersionsAndThenRunsTheFastest) {
  addVariant();
  app.start();
  EXPECT_EQ(app.run(), CL_COMPLETE);
  EXPECT_EQ(output(), squares);
  EXPECT_EQ(app.kernelOfNextRun(), "k_coarsed_g0S4");
  EXPECT_EQ(output(), squares);
}

TEST_F(TuneLaunch, RunsTheApplicationsKernelWhereNoVariantIsFaster) {
  addVariant();
  app.runtime.takes("k_coarsed_g0S4", {9900});
  app.start();
  expectOriginal();
}

// The kernel's first runs take 1, the later ones 3: what was dropped is within
// twice the median of all.
TEST_F(TuneLaunch, DecidesWithoutAVersionThatWasDropped) {
  addVariant();
  app.addVariant("g0S2", square);
  app.runtime.takes("k", {1000, 1000, 1000, 1000, 1000, 3000});
  app.runtime.takes("k_coarsed_g0S4", {2500});
  app.runtime.takes("k_coarsed_g0S2", {100});
  app.start();
  app.run();
  EXPECT_EQ(app.kernelOfNextRun(), "k_coarsed_g0S2");
  const std::vector<VersionFigures> versions =
      app.configuration().decision->versions;
  EXPECT_THAT(versions, Contains(AllOf(Field(&VersionFigures::version, "g0S4"),
                                       Field(&VersionFigures::dropped, true),
                                       Field(&VersionFigures::samples, 2U))));
}

TEST_F(TuneLaunch, GivesEachVersionWhatTheApplicationLeft) {
  const auto increment = [](const Launch &launch) {
    for (unsigned char &element : launch.buffer(1))
      ++element;
  };
  *app.body = increment;
  addVariant(increment);
  app.start();
  app.run();
  EXPECT_EQ(output(), Bytes(4, 1));
  EXPECT_EQ(app.kernelOfNextRun(), "k_coarsed_g0S4");
  EXPECT_EQ(output(), Bytes(4, 2));
}

TEST_F(TuneLaunch, NeverChoosesAVariantThatWritesNothing) {
  addVariant([](const Launch &) {});
  app.start();
  expectOriginal();
  EXPECT_THAT(checksOf("g0S4"), ElementsAre(CheckResult::Different));
}

TEST_F(TuneLaunch, NeverChoosesAVariantThatIsOffByOneElement) {
  addVariant([](const Launch &launch) {
    square(launch);
    ++launch.buffer(1)[3];
  });
  app.start();
  expectOriginal();
  const RunConfiguration measured = app.configuration();
  EXPECT_THAT(measured.checks,
              Contains(AllOf(Field(&CheckLine::version, "g0S4"),
                             Field(&CheckLine::argument, 1U),
                             Field(&CheckLine::element, 3U),
                             Field(&CheckLine::expected, "16"),
                             Field(&CheckLine::actual, "17"))));
  ASSERT_TRUE(measured.decision);
  EXPECT_EQ(measured.decision->winner, "");
}

TEST_F(TuneLaunch, NeverChoosesAVariantThatSpoilsWhatTheKernelOnlyReads) {
  addVariant([](const Launch &launch) {
    square(launch);
    launch.buffer(0)[0] = 99;
  });
  app.start();
  expectOriginal();
  EXPECT_EQ(app.runtime.bytes(app.input), (Bytes{1, 2, 3, 4}));
}

TEST_F(TuneLaunch, TakesAVariantOutForAllSizesWhereItIsWrongForSome) {
  addVariant([](const Launch &launch) {
    if (launch.global[0] != 32)
      square(launch);
  });
  app.start();
  app.run(64);
  EXPECT_EQ(app.kernelOfNextRun(64), "k_coarsed_g0S4");
  app.clearOutput();
  app.run(128);
  EXPECT_EQ(output(), squares);
  EXPECT_EQ(app.kernelOfNextRun(64), "k");
  EXPECT_EQ(app.kernelOfNextRun(128), "k");
  app.clearOutput();
  app.run(256);
  EXPECT_EQ(app.kernelOfNextRun(256), "k");
  EXPECT_EQ(app.configuration(2).line.variants.at(0).refusal,
            "its results differed in another launch");
}

TEST_F(TuneLaunch, ChoosesNoVariantOfAKernelThatDiffersFromItself) {
  auto runs = std::make_shared<std::atomic<int>>(0);
  *app.body = [runs](const Launch &launch) {
    launch.buffer(1)[0] = static_cast<unsigned char>(++*runs);
  };
  addVariant();
  app.start();
  app.run();
  EXPECT_THAT(checksOf(""), ElementsAre(CheckResult::Different));
  EXPECT_EQ(app.kernelOfNextRun(64), "k");
  EXPECT_EQ(app.kernelOfNextRun(128), "k");
  EXPECT_EQ(app.configuration(1).line.untunable,
            "the kernel does not repeat its own results");
}

namespace {
/// A kernel on floats, with a variant that is off by the last bit.
struct LastBit : WithVariant {
  explicit LastBit(const char *verify)
      : WithVariant({{variable::verify, verify}}) {
    const auto write = [](const Launch &launch, std::uint32_t bits) {
      std::memcpy(launch.buffer(1).data(), &bits, sizeof bits);
    };
    Declaration floats;
    floats.typeName = "float*";
    app.program.declares(1, floats);
    *app.body = [write](const Launch &launch) { write(launch, 0x3F800000); };
    addVariant([write](const Launch &launch) { write(launch, 0x3F800001); });
    app.start();
    app.run();
  }
};
struct LastBitExactly : LastBit {
  LastBitExactly() : LastBit("exact") {}
};
struct LastBitWithABound : LastBit {
  LastBitWithABound() : LastBit("1e-5") {}
};
struct LastBitUnchecked : LastBit {
  LastBitUnchecked() : LastBit("off") {}
};
} // namespace

TEST_F(LastBitExactly, IsADifference) {
  EXPECT_EQ(app.kernelOfNextRun(), "k");
  EXPECT_THAT(checksOf("g0S4"), ElementsAre(CheckResult::Different));
}

TEST_F(LastBitWithABound, IsNone) {
  EXPECT_EQ(app.kernelOfNextRun(), "k_coarsed_g0S4");
  EXPECT_THAT(checksOf("g0S4"), Each(CheckResult::WithinBound));
}

TEST_F(LastBitUnchecked, IsNotLookedAt) {
  EXPECT_EQ(app.kernelOfNextRun(), "k_coarsed_g0S4");
  EXPECT_THAT(app.configuration().checks, IsEmpty());
}

TEST_F(TuneLaunch, LeavesNoObjectAndNoReference) {
  addVariant();
  app.start();
  const auto alive = [this] {
    std::vector<std::string> all;
    for (const char *kind : {"event", "kernel", "queue", "buffer", "context"})
      for (const std::string &name : app.runtime.alive(kind))
        all.push_back(name);
    return all;
  };
  (void)app.runtime.queue();
  const std::vector<std::string> before = alive();
  app.run();
  app.agent.unload();
  EXPECT_EQ(alive(), before);
}

TEST_F(TuneLaunch, RunsTheApplicationsKernelWhileVersionsAreMeasured) {
  addVariant();
  app.start();
  app.runtime.holdCallbacks();
  cl_event first = nullptr;
  app.launch(app.kernel, {64}, {4}, &first);
  EXPECT_EQ(app.kernelOfNextRun(), "k");
  app.clearOutput(); // the queue of this runtime keeps no order
  EXPECT_EQ(app.runtime.fireCallbacks(), 1U);
  app.runtime.holdCallbacks(false);
  app.cl.clWaitForEvents(1, &first);
  app.cl.clReleaseEvent(first);
  EXPECT_EQ(app.kernelOfNextRun(), "k_coarsed_g0S4");
}

TEST_F(TuneLaunch, LetsTheRunGoWhereItsWaitListFails) {
  addVariant();
  app.start();
  const cl_event gate = app.runtime.addEvent();
  app.runtime.endEvent(gate, -5);
  cl_event event = nullptr;
  app.launch(app.kernel, {64}, {4}, &event, {gate});
  app.cl.clWaitForEvents(1, &event);
  app.cl.clReleaseEvent(event);
  app.cl.clReleaseEvent(gate);
  EXPECT_EQ(output(), squares);
}

TEST_F(TuneLaunch, LetsTheRunGoWhereTheAgentIsUnloadedBefore) {
  addVariant();
  app.start();
  app.runtime.holdCallbacks();
  cl_event event = nullptr;
  app.launch(app.kernel, {64}, {4}, &event);
  app.agent.unload();
  app.runtime.fireCallbacks();
  app.runtime.holdCallbacks(false);
  app.cl.clWaitForEvents(1, &event);
  app.cl.clReleaseEvent(event);
  EXPECT_EQ(output(), squares);
}

TEST_F(TuneLaunch, MeasuresOnceForAllKernelObjects) {
  addVariant();
  app.start();
  app.run();
  cl_kernel other = app.create("k");
  app.set(other, 0, app.input);
  app.set(other, 1, app.output);
  std::swap(app.kernel, other);
  EXPECT_EQ(app.kernelOfNextRun(), "k_coarsed_g0S4 2");
  app.release(other);
}

// A variant that does nothing would pass such a test.
TEST_F(TuneLaunch, ComparesNothingWhereTheKernelWritesWhatIsThere) {
  addVariant([](const Launch &) {});
  app.start();
  app.runtime.setBytes(app.output, squares);
  app.run();
  EXPECT_EQ(app.configuration(1).line.untunable,
            "the launch leaves its memory as it was, so that results cannot be "
            "compared");
  EXPECT_EQ(app.kernelOfNextRun(), "k");
  app.clearOutput();
  app.run();
  app.clearOutput();
  EXPECT_EQ(app.kernelOfNextRun(), "k");
  EXPECT_EQ(output(), squares);
}

namespace {
/// A kernel whose third argument a variant wants to be even.
struct WithCondition : testing::Test {
  MeasuredApplication app;
};
} // namespace

TEST_F(WithCondition, RunsTheKernelWhereTheWinnersConditionsRefuse) {
  app.program.kernel("c", 3, square).kernel("c_coarsed_g0S4d2S2", 3, square);
  app.runtime.takes("c", {10000});
  app.runtime.takes("c_coarsed_g0S4d2S2", {1000});
  app.start();
  app.release(app.kernel);
  app.kernel = app.create("c");
  app.set(app.kernel, 0, app.input);
  app.set(app.kernel, 1, app.output);
  app.set(app.kernel, 2, cl_int{6});
  app.run();
  EXPECT_EQ(app.kernelOfNextRun(), "c_coarsed_g0S4d2S2");
  app.set(app.kernel, 2, cl_int{7});
  EXPECT_EQ(app.kernelOfNextRun(), "c");
}
