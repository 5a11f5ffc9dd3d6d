// Programs tuned by corvane on a real OpenCL runtime, and run with what it
// found.

#include "tests/system/tune/TunedFolderTest.h"

#include <csignal>

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::Field;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

namespace {

/// Programs with variants of their own, and no others.
class TunedProgram : public TunedFolderTest {
protected:
  /// The program of the tests with these words.
  static Words host(Words words) {
    words.insert(words.begin(), std::string(HOSTS_FOLDER) + "/launches");
    return words;
  }

  ProgramRun tuned(const Words &command, Words options = {}) const {
    options.emplace_back("--no-generate");
    return TunedFolderTest::tuned(command, options);
  }

  void expectSameResults(const std::string &kernel, Words options = {}) const {
    options.emplace_back("--no-generate");
    TunedFolderTest::expectSameResults(host({kernel}), options);
  }
};

} // namespace

TEST_F(TunedProgram, UsesAVariantThatIsFaster) {
  expectSameResults("good");
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each("g0S2")));
  const ProfileEntry entry = profile().entries.front();
  EXPECT_EQ(entry.versions.at("").median, entry.sizes.global[0]);
  EXPECT_EQ(entry.versions.at("g0S2").median, entry.sizes.global[0] / 2);
  const RunRecord record = records().front();
  ASSERT_TRUE(record.end);
  EXPECT_EQ(record.end->launches, 6U);
  EXPECT_EQ(record.end->tunedLaunches, 2U);
  EXPECT_THAT(record.end->byVersion,
              Contains(AllOf(Field(&VersionLaunches::version, "g0S2"),
                             Field(&VersionLaunches::launches, 2U))));
}

TEST_F(TunedProgram, SaysHowManyLaunchesRanAVariant) {
  EXPECT_EQ(tuned(host({"good"})).exitCode, 0);
  EXPECT_THAT(run(host({"good"}), {"--summary"}).err,
              HasSubstr("CV: 2 of 2 configurations ran a variant, in 6 of 6 "
                        "launches; unknown to the profile: 0.\n"));
  EXPECT_THAT(run(host({"good", "-DOTHER"}), {"--summary"}).err,
              HasSubstr("CV: 0 of 2 configurations ran a variant, in 0 of 6 "
                        "launches; unknown to the profile: 2.\n"));
}

TEST_F(TunedProgram, DoesNotUseAVariantThatWritesNothing) {
  expectSameResults("empty");
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each("original")));
}

TEST_F(TunedProgram, DoesNotUseAVariantThatIsOffByOneElement) {
  expectSameResults("offByOne");
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each("original")));
}

TEST_F(TunedProgram, DoesNotUseAVariantThatIsRightForSomeSizesOnly) {
  expectSameResults("someSizes");
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each("original")));
}

TEST_F(TunedProgram, DoesNotUseAVariantThatIsOffByTheLastBit) {
  expectSameResults("lastBit");
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each("original")));
}

TEST_F(TunedProgram, UsesAVariantThatIsOffByTheLastBitWithABound) {
  const Words command = host({"lastBit", "-cl-kernel-arg-info"});
  EXPECT_EQ(tuned(command, {"--verify", "1e-5"}).exitCode, 0);
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each("g0S2")));
}

TEST_F(TunedProgram, UsesNoVariantOfAKernelThatRacesWithItself) {
  expectSameResults("racing");
  EXPECT_THAT(uses(), Not(Contains("g0S2")));
}

TEST_F(TunedProgram, MayHaveKernelsThatWorkInPlace) {
  expectSameResults("inPlace");
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each("g0S2")));
}

TEST_F(TunedProgram, MayBuildItsKernelsWithDifferentOptions) {
  EXPECT_EQ(tuned(host({"good", "-DEXTRA=1"})).exitCode, 0);
  EXPECT_EQ(tuned(host({"good", "-DEXTRA=0"})).exitCode, 0);
  EXPECT_THAT(profile().programs, SizeIs(2));
  EXPECT_THAT(uses(), testing::UnorderedElementsAre("g0S2", "g0S2", "original",
                                                    "original"));
  const std::string bare = alone(host({"good"})).out;
  EXPECT_EQ(run(host({"good", "-DEXTRA=1"})).out, bare);
  EXPECT_EQ(run(host({"good", "-DEXTRA=0"})).out, bare);
}

TEST_F(TunedProgram, MayBeManyProcesses) {
  const std::string one = host({"good"}).front() + " good";
  const std::string command = one + " & " + one + " & wait; " + one;
  EXPECT_EQ(tuned({"sh", "-c", command}).exitCode, 0);
  EXPECT_THAT(records(), SizeIs(3));
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each("g0S2")));
  EXPECT_EQ(profile().entries[0].versions.at("g0S2").samples, 21U);
}

TEST_F(TunedProgram, MayBeKilled) {
  const ProgramRun killed = tuned(host({"good", "", "kill"}));
  EXPECT_EQ(killed.exitCode, 128 + SIGKILL);
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each("g0S2")));
  EXPECT_FALSE(records().front().end);
}

TEST_F(TunedProgram, MayBeInterrupted) {
  const ProgramRun interrupted = tuned(host({"good", "", "interrupt"}));
  EXPECT_EQ(interrupted.exitCode, 128 + SIGINT);
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each("g0S2")));
}

TEST_F(TunedProgram, MayLeaveWhileAKernelIsMeasured) {
  const ProgramRun left = tuned(host({"good", "", "leave"}));
  EXPECT_EQ(left.exitCode, 0) << left.err;
  EXPECT_EQ(left.out, alone(host({"good"})).out);
  EXPECT_TRUE(records().front().end);
}
