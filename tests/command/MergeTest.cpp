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

namespace {
/// Runs of one program for which two machines generated different variants.
class MergeGenerated : public Merge {
protected:
  /// A tuned folder with a run in which g0S4 wins; those of different processes
  /// differ.
  std::string tunedOnMachine(const std::string &name, std::uint64_t pid) const {
    std::vector<RunLine> lines = runOf(pid);
    std::get<ProgramLine>(lines[2]).hash = hash;
    return tunedFolder(name, lines);
  }

  void writeVariants(const std::string &place, const std::string &text) const {
    std::filesystem::create_directories(folder.path() / place);
    EXPECT_TRUE(folder.write(place + "/" + hash + ".cl", text));
  }

  const std::string hash = std::string(64, 'a');
  const std::string withS2 = "// Variants of kernels, format 1\n"
                             "// variant 4 4 scale_coarsed_g0S2\n"
                             "// program 12\n"
                             "top\nsc2\nend\n";
  const std::string withS4 = "// Variants of kernels, format 1\n"
                             "// variant 4 4 scale_coarsed_g0S4\n"
                             "// program 12\n"
                             "top\nsc4\nend\n";
};
} // namespace

TEST_F(MergeGenerated, KeepsTheTextOfWhatWins) {
  const std::string a = tunedOnMachine("a", 1);
  const std::string b = tunedOnMachine("b", 2);
  writeVariants("a/generated", withS2);
  writeVariants("b/generated", withS4);
  EXPECT_EQ(merged({a, b}).exitCode, 0);
  EXPECT_EQ(folder.read("all/variants/" + hash + ".cl"), withS4);
  EXPECT_EQ(folder.read("all/generated/" + hash + ".cl"),
            "// Variants of kernels, format 1\n"
            "// variant 4 4 scale_coarsed_g0S2\n"
            "// variant 8 4 scale_coarsed_g0S4\n"
            "// program 16\n"
            "top\nsc2\nsc4\nend\n");
}

TEST_F(MergeGenerated, NeedsOnlyWhatProgramsRunWith) {
  const std::string a = tunedOnMachine("a", 1);
  writeVariants("a/variants", withS4);
  EXPECT_EQ(merged({a, tunedOnMachine("b", 2)}).exitCode, 0);
  EXPECT_EQ(folder.read("all/variants/" + hash + ".cl"), withS4);
}

TEST_F(MergeGenerated, TellsWhatItCannotUse) {
  const std::string a = tunedOnMachine("a", 1);
  const std::string b = tunedOnMachine("b", 2);
  writeVariants("a/generated", withS4);
  writeVariants("a/variants", "damaged");
  writeVariants("b/generated", "// Variants of kernels, format 1\n"
                               "// variant 6 4 scale_coarsed_g0S2\n"
                               "// program 14\n"
                               "other\nsc2\nend\n");
  EXPECT_TRUE(folder.write("b/generated/name.cl", "not a program"));
  const Outcome outcome = merged({a, b});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.err,
              AllOf(HasSubstr("has no generated variants that can be read\n"),
                    HasSubstr("was made of another source")));
  EXPECT_EQ(folder.read("all/variants/" + hash + ".cl"), withS4);
  EXPECT_FALSE(folder.has("all/generated/name.cl"));
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
