// Tests of corvane tune: the environment of the program, the profile, the
// table.

#include "tests/command/Corvane.h"

#include "results/profile/ProfileFile.h"

#include "llvm/Support/Program.h"

#include <algorithm>

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {
class Tune : public CorvaneTest {
protected:
  /// The profile that was written.
  Profile made() const {
    llvm::Expected<Profile> read = readProfile(profile());
    if (read)
      return *read;
    ADD_FAILURE() << llvm::toString(read.takeError());
    return {};
  }

  /// The last line of what is said when a report was written.
  std::string reportLine() const {
    return "corvane: the report is in " + output() + "/report.html\n";
  }
};
} // namespace

TEST_F(Tune, EndsAsTheProgramDoes) {
  EXPECT_EQ(tuned({"exit", "0"}).exitCode, 0);
  EXPECT_EQ(tuned({"exit", "3"}).exitCode, 3);
}

TEST_F(Tune, PassesArgumentsAndStreamsOn) {
  const Outcome outcome = tuned({"say", "two words", "say", "--", "say", "run",
                                 "say", "--help", "nonsense"});
  EXPECT_EQ(outcome.out, "two words\n--\nrun\n--help\n");
  EXPECT_THAT(outcome.err, StartsWith("unknown: nonsense\n"));
  EXPECT_EQ(outcome.exitCode, 99);
}

TEST_F(Tune, SetsTheVariablesThatAreGiven) {
  const Outcome outcome = corvane(
      {"tune", "--output", output(), "--samples", "9", "--verify", "1e-5",
       "--seconds", "2.5", "--", APPLICATION_FILE, "print", "CORVANE_SAMPLES",
       "print", "CORVANE_VERIFY", "print", "CORVANE_TUNE_SECONDS"});
  EXPECT_EQ(outcome.out, "CORVANE_SAMPLES=9\nCORVANE_VERIFY=1e-5\n"
                         "CORVANE_TUNE_SECONDS=2.5\n");
}

TEST_F(Tune, LeavesVariablesAsTheyAreOtherwise) {
  define("CORVANE_SAMPLES", "5");
  EXPECT_EQ(tuned({"print", "CORVANE_SAMPLES", "print", "CORVANE_VERIFY"}).out,
            "CORVANE_SAMPLES=5\nno CORVANE_VERIFY\n");
}

TEST_F(Tune, AddsTheLayerToThoseThatAreThere) {
  EXPECT_EQ(tuned({"print", "OPENCL_LAYERS"}).out,
            "OPENCL_LAYERS=" + layer() + "\n");
  define("OPENCL_LAYERS", "/opt/other.so");
  EXPECT_EQ(tuned({"print", "OPENCL_LAYERS"}).out,
            std::string("OPENCL_LAYERS=/opt/other.so") +
                llvm::sys::EnvPathSeparator + layer() + "\n");
  define("OPENCL_LAYERS", layer());
  EXPECT_EQ(tuned({"print", "OPENCL_LAYERS"}).out,
            "OPENCL_LAYERS=" + layer() + "\n");
}

TEST_F(Tune, NamesTheFolderFromTheRoot) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  const Outcome outcome =
      corvane({"tune", "--", APPLICATION_FILE, "print", "CORVANE_TUNE"});
  std::filesystem::current_path(before);
  EXPECT_THAT(outcome.out, EndsWith("corvane-tuned\n"));
  EXPECT_TRUE(std::filesystem::path(outcome.out.substr(13)).is_absolute());
  EXPECT_TRUE(folder.has("corvane-tuned"));
}

#ifdef COARSENER_FILE
TEST_F(Tune, HasVariantsGeneratedUnlessItIsToldNotTo) {
  const std::vector<std::string> application = {"--",    APPLICATION_FILE,
                                                "print", "CORVANE_GENERATE",
                                                "print", "CORVANE_VARIANTS"};
  std::vector<std::string> words = {"tune", "--output", output()};
  words.insert(words.end(), application.begin(), application.end());
  EXPECT_EQ(corvane(words).out, "CORVANE_GENERATE=" + written(COARSENER_FILE) +
                                    "\nCORVANE_VARIANTS=" + written(output()) +
                                    "/generated\n");
  define("CORVANE_GENERATE", "/opt/other");
  define("CORVANE_VARIANTS", "/opt/others");
  words.insert(words.begin() + 1, "--no-generate");
  EXPECT_EQ(corvane(words).out, "no CORVANE_GENERATE\nno CORVANE_VARIANTS\n");
}
#endif

TEST_F(Tune, TellsThatTheGeneratorIsMissing) {
  const std::filesystem::path corvaneFile = CORVANE_FILE;
  const std::filesystem::path layerFile = LAYER_FILE;
  const std::string lonely = (folder.path() / corvaneFile.filename()).string();
  std::filesystem::copy_file(corvaneFile, lonely);
  std::filesystem::copy_file(layerFile, folder.path() / layerFile.filename());
  const Outcome outcome =
      runProgram({lonely, "tune", "--output", output(), "--", APPLICATION_FILE,
                  "print", "CORVANE_GENERATE"});
  EXPECT_EQ(outcome.out, "no CORVANE_GENERATE\n");
  EXPECT_THAT(outcome.err,
              StartsWith("corvane: no variants are generated, because "
                         "corvane-coarsen is not beside this program; those "
                         "that programs carry are measured\n"));
}

namespace {
/// Runs of a program for which variants were generated.
class TuneWithGenerated : public Tune {
protected:
  TuneWithGenerated() {
    std::filesystem::create_directories(output() + "/generated");
    writeGenerated(hash + ".cl");
  }

  void writeGenerated(const std::string &name) const {
    EXPECT_TRUE(writeBytes(output() + "/generated/" + name,
                           "// Variants of kernels, format 1\n"
                           "// variant 4 4 scale_coarsed_g0S4\n"
                           "// variant 8 4 scale_coarsed_g0S8\n"
                           "// variant 12 4 other_coarsed_g0S4\n"
                           "// program 20\n"
                           "top\nsca\nsc8\noth\nend\n"));
  }

  std::string recordWith(const std::string &programHash) const {
    std::vector<RunLine> lines = fasterVariant();
    std::get<ProgramLine>(lines[2]).hash = programHash;
    return recordFile("r", lines);
  }

  const std::string hash = std::string(64, 'a');
};
} // namespace

TEST_F(TuneWithGenerated, KeepsTheTextOfTheWinners) {
  tuned({"record", "a", recordWith(hash)});
  EXPECT_EQ(folder.read("tuned/variants/" + hash + ".cl"),
            "// Variants of kernels, format 1\n"
            "// variant 4 4 scale_coarsed_g0S4\n"
            "// program 12\n"
            "top\nsca\nend\n");
}

TEST_F(TuneWithGenerated, RemovesTheTextOfWhatWinsNoMore) {
  std::filesystem::create_directories(output() + "/variants");
  EXPECT_TRUE(writeBytes(output() + "/variants/" + hash + ".cl", "old"));
  std::vector<RunLine> lines = startOfRun({{"scale", {"g0S4"}}});
  std::get<ProgramLine>(lines[2]).hash = hash;
  addConfiguration(lines, "scale", 100.0, 100.0);
  tuned({"record", "a", recordFile("r", lines)});
  EXPECT_FALSE(folder.has("tuned/variants/" + hash + ".cl"));
}

TEST_F(TuneWithGenerated, WritesNothingForAProgramWhoseHashIsNone) {
  writeGenerated("name.cl");
  tuned({"record", "a", recordWith("name"), "record", "b",
         recordWith("../generated/" + hash)});
  EXPECT_FALSE(folder.has("tuned/variants"));
}

TEST_F(TuneWithGenerated, WritesNothingWhereWhatWasGeneratedIsDamaged) {
  EXPECT_TRUE(writeBytes(output() + "/generated/" + hash + ".cl",
                         "// Variants of kernels, format 1\n"));
  tuned({"record", "a", recordWith(hash)});
  EXPECT_FALSE(folder.has("tuned/variants"));
}

TEST_F(Tune, MakesTheProfileAndATable) {
  std::vector<RunLine> lines =
      startOfRun({{"scale", {"g0S4"}}, {"copy", {"g0S4"}}, {"sort", {"g0S4"}}});
  addConfiguration(lines, "scale", 100.0, 50.0);
  addConfiguration(lines, "copy", 20000.0, 20000.0);
  addConfiguration(lines, "sort", 3000.0, 1000.0);
  CheckLine wrong;
  wrong.configuration = static_cast<std::uint32_t>(lines.size()) - 17;
  wrong.version = "g0S4";
  wrong.result = CheckResult::Different;
  lines.emplace_back(wrong);

  const Outcome outcome = tuned({"record", "a", recordFile("r", lines)});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ("\n" + outcome.err, R"(
kernel  sizes      winner    original  winner's  gain                    check
copy    1024 / 64  original  20.00 ms            no difference
sort    1024 / 64  original   3.00 ms            nothing to choose from  1 of 1 variants different
scale   1024 / 64  g0S4      100.0 us   50.0 us  2.00x (2.00x to 2.00x)  equal
corvane: less than 1 % of kernel time saved; to use it: corvane run --profile )" +
                                    output() + " -- PROGRAM\n" + reportLine());
  const Profile read = made();
  ASSERT_EQ(read.entries.size(), 3U);
  EXPECT_EQ(read.entries[0].kernel, "copy");
  EXPECT_EQ(read.entries[0].use, std::nullopt);
  EXPECT_EQ(read.entries[1].use, "g0S4");
  EXPECT_EQ(read.entries[2].use, std::nullopt);
}

TEST_F(Tune, TellsHowMuchItSavesAndHowToUseIt) {
  const Outcome outcome =
      tuned({"record", "a", recordFile("r", fasterVariant())});
  EXPECT_THAT(outcome.err,
              EndsWith("corvane: 50 % of kernel time saved; to use it: corvane "
                       "run --profile " +
                       output() + " -- PROGRAM\n" + reportLine()));
}

TEST_F(Tune, LeavesAReportWithTheCommand) {
  tuned({"record", "a", recordFile("r", fasterVariant()), "say", "two words"});
  EXPECT_THAT(folder.read("tuned/report.html"),
              AllOf(StartsWith("<!DOCTYPE html>"), HasSubstr("\"scale\""),
                    HasSubstr("\"two words\"")));
}

TEST_F(Tune, TellsWhenItSavesNothing) {
  std::vector<RunLine> lines = startOfRun({{"scale", {"g0S4"}}});
  addConfiguration(lines, "scale", 100.0, 100.0);
  EXPECT_THAT(tuned({"record", "a", recordFile("r", lines)}).err,
              EndsWith("corvane: no kernel time saved; the profile is in " +
                       output() + "\n" + reportLine()));
}

TEST_F(Tune, TellsWhatToDoAboutProgramsFromBinaries) {
  std::vector<RunLine> lines = startOfRun({{"scale", {"g0S4"}}});
  ConfigurationLine configuration;
  configuration.kernel = "scale";
  configuration.untunable = "the program has no source to look at";
  lines.emplace_back(configuration);
  EXPECT_THAT(tuned({"record", "a", recordFile("r", lines)}).err,
              HasSubstr("\ncorvane: programs from binaries cannot be tuned; "
                        "PyOpenCL makes them unless PYOPENCL_NO_CACHE=1 is "
                        "set\n"));
}

TEST_F(Tune, TellsProgramsAndDevicesApart) {
  std::vector<RunLine> other = fasterVariant();
  std::get<DeviceLine>(other[1]).name = "gpu";
  std::get<ProgramLine>(other[2]).hash = "fedcba9876";
  const Outcome outcome =
      tuned({"record", "a", recordFile("r", fasterVariant()), "record", "b",
             recordFile("s", other)});
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("  0123abcd  device, driver 1\n"),
                                 HasSubstr("  fedcba98  gpu, driver 1\n")));
}

TEST_F(Tune, CutsALongTable) {
  std::vector<RunLine> lines = startOfRun({{"k", {"g0S4"}}});
  for (int i = 0; i != 60; ++i)
    addConfiguration(lines, "k" + std::to_string(i), 100.0, 50.0);
  const std::string err = tuned({"record", "a", recordFile("r", lines)}).err;
  EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1 + 50 + 1 + 1 + 1);
  EXPECT_THAT(err, HasSubstr("\nand 10 more\n"));
}

TEST_F(Tune, CountsTheRunsOfBefore) {
  tuned({"record", "a", recordFile("r", fasterVariant())});
  tuned({"record", "b", folder.file("r")});
  EXPECT_EQ(made().entries.at(0).versions.at("g0S4").samples, 14U);
}

TEST_F(Tune, MakesTheProfileWhateverTheExitCode) {
  const Outcome outcome =
      tuned({"record", "a", recordFile("r", fasterVariant()), "exit", "42"});
  EXPECT_EQ(outcome.exitCode, 42);
  EXPECT_EQ(made().entries.at(0).use, "g0S4");
}

TEST_F(Tune, UsesARecordWhoseEndIsMissing) {
  const std::string whole = recordFile("r", fasterVariant());
  const std::string text = folder.read("r");
  ASSERT_TRUE(folder.write("half", text + text.substr(0, 50)));
  const Outcome outcome = tuned({"record", "a", folder.file("half")});
  EXPECT_THAT(outcome.err, Not(HasSubstr("run.jsonl")));
  EXPECT_EQ(made().entries.at(0).use, "g0S4");
}

TEST_F(Tune, NamesTheLineOfARecordThatItCannotUse) {
  recordFile("r", fasterVariant());
  ASSERT_TRUE(folder.write("bad", folder.read("r") + "\x1b[2J\n?\n"));
  const Outcome outcome = tuned({"record", "a", folder.file("bad")});
  EXPECT_THAT(outcome.err,
              AllOf(HasSubstr("run.jsonl, line 21: byte 1: "),
                    HasSubstr("(and 1 more)\n"), Not(HasSubstr("\x1b"))));
  EXPECT_EQ(made().entries.at(0).use, "g0S4");
}

TEST_F(Tune, PassesOverWhatIsNoRecord) {
  std::filesystem::create_directories(output() + "/runs/empty");
  std::filesystem::create_directories(output() + "/runs/folder/run.jsonl");
  const Outcome outcome =
      tuned({"record", "a", recordFile("r", fasterVariant())});
  EXPECT_THAT(outcome.err, HasSubstr("it cannot be opened\n"));
  EXPECT_EQ(made().entries.at(0).use, "g0S4");
}

TEST_F(Tune, TellsWhenThereIsNothingToChooseFrom) {
  std::vector<RunLine> lines = startOfRun({{"scale", {}}});
  EXPECT_EQ(tuned({"record", "a", recordFile("r", lines)}).err,
            "corvane: no program had variants: there was nothing to choose "
            "from\n" +
                reportLine());
  std::get<ProgramLine>(lines[2]).lookAlikes = {
      {"scale_coarsed_g4", "did you mean g0S4?"}};
  EXPECT_EQ(tuned({"record", "b", recordFile("r", lines)}).err,
            "corvane: no program had variants; scale_coarsed_g4 looks like one "
            "and is not: did you mean g0S4?\n" +
                reportLine());
}

TEST_F(Tune, TellsWhyNoVariantsWereGenerated) {
  std::vector<RunLine> lines = startOfRun({{"scale", {}}});
  std::get<ProgramLine>(lines[2]).whyNotGenerated = "it has no source";
  EXPECT_THAT(
      tuned({"record", "a", recordFile("r", lines)}).err,
      StartsWith("corvane: no program had variants: it has no source\n"));
}

TEST_F(Tune, TellsAVariableThatIsInItsWay) {
  define("CORVANE_AUTOTUNE", folder.text());
  const Outcome outcome = tuned({"say", "hello"});
  EXPECT_EQ(outcome.exitCode, 125);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, StartsWith("corvane: CORVANE_AUTOTUNE is set"));
}

TEST_F(Tune, TellsAFolderThatItCannotWriteTo) {
  ASSERT_TRUE(folder.write("tuned", "a file"));
  const Outcome outcome = tuned({"say", "hello"});
  EXPECT_EQ(outcome.exitCode, 125);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, AllOf(HasSubstr(" cannot be written to ("),
                                 EndsWith("--output\n")));
}

TEST_F(Tune, TellsAProgramThatIsNotThere) {
  const Outcome outcome =
      corvane({"tune", "--output", output(), "--", "./no-such-program"});
  EXPECT_EQ(outcome.exitCode, 127);
  EXPECT_THAT(outcome.err, HasSubstr("corvane: ./no-such-program: No such f"));
}

TEST_F(Tune, TellsALayerThatIsNotBesideIt) {
  const std::filesystem::path original = CORVANE_FILE;
  const std::string lonely = (folder.path() / original.filename()).string();
  std::filesystem::copy_file(original, lonely);
  const Outcome outcome = runProgram(
      {lonely, "tune", "--output", output(), "--", APPLICATION_FILE});
  EXPECT_EQ(outcome.exitCode, 125);
  EXPECT_THAT(outcome.err, HasSubstr(" is not beside this program"));
}

TEST_F(Tune, FindsTheLayerOfAnInstallTree) {
  const std::filesystem::path original = CORVANE_FILE;
  const std::filesystem::path layer = LAYER_FILE;
  for (const char *name : {"bin", "lib"})
    std::filesystem::create_directory(folder.path() / name);
  const std::filesystem::path program =
      folder.path() / "bin" / original.filename();
  std::filesystem::copy_file(original, program);
  ASSERT_TRUE(folder.write("lib/" + layer.filename().string(), ""));
  const Outcome outcome =
      runProgram({program.string(), "tune", "--output", output(), "--",
                  APPLICATION_FILE, "print", "OPENCL_LAYERS"});
  EXPECT_THAT(outcome.out, EndsWith(layer.filename().string() + "\n"));
}
