// Tests of corvane merge.

#include "tests/command/Corvane.h"

#include "results/profile/ProfileFile.h"

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {
class Merge : public CorvaneTest {
protected:
  Outcome merged(std::vector<std::string> places) const {
    places.insert(places.begin(), {"merge", "-o", folder.file("all")});
    return corvane(places);
  }

  Profile made() const {
    llvm::Expected<Profile> read = readProfile(folder.read("all/profile.json"));
    if (read)
      return *read;
    ADD_FAILURE() << llvm::toString(read.takeError());
    return {};
  }

  /// The lines of a run that is like the others but for its process.
  static std::vector<RunLine> runOf(std::uint64_t pid) {
    std::vector<RunLine> lines = fasterVariant();
    std::get<ProcessLine>(lines[0]).pid = pid;
    return lines;
  }
};
} // namespace

TEST_F(Merge, PutsTheSamplesOfAllRunsTogether) {
  const Outcome outcome =
      merged({tunedFolder("a", runOf(1)), tunedFolder("b", runOf(2))});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.err, AllOf(StartsWith("corvane: 2 runs are in "),
                                 Not(HasSubstr("apart"))));
  EXPECT_EQ(made().entries.at(0).versions.at("g0S4").samples, 14U);
  EXPECT_TRUE(folder.has("all/report.html"));
  EXPECT_TRUE(folder.has("all/runs/a/run.jsonl"));
  EXPECT_TRUE(folder.has("all/runs/a-2/run.jsonl"));
}

TEST_F(Merge, CountsARunThatIsThereTwiceOnce) {
  const Outcome outcome =
      merged({tunedFolder("a", runOf(1)), tunedFolder("b", runOf(1))});
  EXPECT_THAT(outcome.err, HasSubstr(" is there twice, and counts once\n"));
  EXPECT_EQ(made().entries.at(0).versions.at("g0S4").samples, 7U);
}

TEST_F(Merge, KeepsDevicesDriversAndProgramsApart) {
  std::vector<RunLine> driver = runOf(2), program = runOf(3);
  std::get<DeviceLine>(driver[1]).driver = "2";
  std::get<ProgramLine>(program[2]).hash = "fedcba9876";
  const Outcome outcome =
      merged({tunedFolder("a", runOf(1)), tunedFolder("b", driver),
              tunedFolder("c", program)});
  EXPECT_THAT(outcome.err,
              AllOf(HasSubstr("2 devices stay apart: device with driver 1; "
                              "device with driver 2\n"),
                    HasSubstr("2 programs stay apart: 0123abcd, fedcba98\n")));
  EXPECT_EQ(made().entries.size(), 3U);
}

TEST_F(Merge, JoinsTimingLogs) {
  for (const char *name : {"a", "b"}) {
    std::filesystem::create_directories(folder.path() / name);
    ASSERT_TRUE(folder.write(std::string(name) + "/.auto.csv",
                             "header\nscale,64,,,0,,,baseline,1.000"));
  }
  EXPECT_EQ(merged({folder.file("a"), folder.file("b")}).exitCode, 0);
  EXPECT_EQ(folder.read("all/.auto.csv"),
            "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
            "coarsed_kernel,time\nscale,64,,,0,,,baseline,1.000\n"
            "scale,64,,,0,,,baseline,1.000\n");
  EXPECT_FALSE(folder.has("all/profile.json"));
}

TEST_F(Merge, DoesNotTouchAFolderWithResults) {
  const std::string place = tunedFolder("a", runOf(1));
  const Outcome outcome = corvane({"merge", "-o", place, place});
  EXPECT_EQ(outcome.exitCode, 125);
  EXPECT_THAT(outcome.err, HasSubstr("a has results already: name a new "));
  EXPECT_FALSE(folder.has("a/report.html"));
}

TEST_F(Merge, RefusesAPlaceWithoutResults) {
  EXPECT_EQ(merged({folder.file("none")}).exitCode, 125);
}
