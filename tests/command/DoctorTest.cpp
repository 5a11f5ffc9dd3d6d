// Tests of corvane doctor: what it says of the environment and of folders.

#include "tests/command/Corvane.h"

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::AnyOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {
class Doctor : public CorvaneTest {
protected:
  Outcome doctor(std::vector<std::string> words = {}) const {
    words.insert(words.begin(), {"doctor", "--output", output()});
    return corvane(words);
  }
};
} // namespace

TEST_F(Doctor, BeginsEachLineWithWhatItMeans) {
  const Outcome outcome = doctor();
  EXPECT_THAT(outcome.out, StartsWith("ok    corvane " CORVANE_VERSION "\n"));
  std::istringstream lines(outcome.out);
  for (std::string line; std::getline(lines, line);)
    EXPECT_THAT(line, AnyOf(StartsWith("ok    "), StartsWith("warn  "),
                            StartsWith("fail  ")));
  EXPECT_EQ(outcome.exitCode,
            outcome.out.find("\nfail") == std::string::npos ? 0 : 1);
}

TEST_F(Doctor, NamesTheNearestVariable) {
  define("CORVANE_VERIFI", "off");
  define("CORVANE_NONSENSE_OF_MINE", "1");
  EXPECT_THAT(doctor().out,
              AllOf(HasSubstr("\nwarn  variable CORVANE_VERIFI means nothing "
                              "to the library: did you mean CORVANE_VERIFY?\n"),
                    HasSubstr("\nwarn  variable CORVANE_NONSENSE_OF_MINE means "
                              "nothing to the library: docs")));
}

TEST_F(Doctor, SaysNothingOfVariablesThatAreRight) {
  define("CORVANE_VERIFY", "1e-5");
  define("CORVANE_SAMPLES", "5");
  EXPECT_THAT(doctor().out, Not(HasSubstr("CORVANE_")));
}

TEST_F(Doctor, FindsValuesThatCannotBeUsed) {
  define("CORVANE_VERIFY", "roughly");
  define("CORVANE_SAMPLES", "many");
  define("CORVANE_AUTOTUNE", folder.text());
  const Outcome outcome = doctor();
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out,
              AllOf(HasSubstr("\nwarn  CORVANE_VERIFY=roughly cannot be used"),
                    HasSubstr("\nwarn  CORVANE_SAMPLES=many is no number"),
                    HasSubstr("\nfail  CORVANE_AUTOTUNE is set")));
}

TEST_F(Doctor, KnowsTheUsualMistakesWithLayers) {
  const std::filesystem::path file = LAYER_FILE;
  define("OPENCL_LAYERS", file.filename().string());
  EXPECT_THAT(doctor().out, HasSubstr("without a path: "));
  define("OPENCL_LAYERS", "./" + file.filename().string());
  EXPECT_THAT(doctor().out, HasSubstr(", a relative path: "));
  define("OPENCL_LAYERS", folder.file("none.so"));
  EXPECT_THAT(doctor().out,
              HasSubstr(", which is not there: correct the path"));
  define("OPENCL_LAYERS", folder.file("libCorvaneAg.so"));
  const Outcome outcome = doctor();
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out,
              HasSubstr("which is the agent library and no layer"));
}

TEST_F(Doctor, FindsAFolderThatCannotBeWrittenTo) {
  ASSERT_TRUE(folder.write("tuned", "a file"));
  const Outcome outcome = doctor();
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out, HasSubstr("\nfail  results cannot be written to "));
}

TEST_F(Doctor, TellsHowMuchSpaceIsLeftAndLeavesNothing) {
  EXPECT_THAT(doctor().out,
              ContainsRegex("results can be written to .* MiB free"));
  EXPECT_FALSE(folder.has("tuned"));
}

TEST_F(Doctor, WarnsOfTheCacheOfPyOpenCl) {
  std::filesystem::create_directories(folder.path() / "pyopencl");
  define("HOME", folder.text());
  define("XDG_CACHE_HOME", folder.text());
  EXPECT_THAT(doctor().out, HasSubstr("set PYOPENCL_NO_CACHE=1"));
  define("PYOPENCL_NO_CACHE", "1");
  EXPECT_THAT(doctor().out, Not(HasSubstr("PYOPENCL")));
}

TEST_F(Doctor, DoesNotTouchTheFoldersOfOtherRuns) {
  ASSERT_TRUE(folder.write(".auto.csv", "old"));
  define("CORVANE_AUTOTUNE", folder.text());
  doctor();
  EXPECT_EQ(folder.read(".auto.csv"), "old");
}

TEST_F(Doctor, SaysThatAProgramUsesNoOpenCl) {
  const Outcome outcome = doctor({"--", APPLICATION_FILE, "say", "hello"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out,
              AllOf(StartsWith("hello\n"),
                    HasSubstr("ended with exit code 0\n"),
                    HasSubstr("\nfail  no kernel was launched through the ")));
}

TEST_F(Doctor, SaysWhatARecordHas) {
  std::vector<RunLine> lines = fasterVariant();
  ConfigurationLine other = std::get<ConfigurationLine>(lines[3]);
  other.configuration = 99;
  other.kernel = "fill";
  other.untunable = "it uses shared memory";
  lines.emplace_back(other);
  const Outcome outcome = doctor({"--", APPLICATION_FILE, "record", "a",
                                  recordFile("r", lines), "exit", "3"});
  EXPECT_THAT(
      outcome.out,
      AllOf(HasSubstr("\nwarn  the program ended with exit code 3: "),
            HasSubstr("\nok    program 0123abcd: 1 kernel, 1 variant\n"),
            HasSubstr("\nok    1 configuration with variants can be "
                      "tuned\n"),
            HasSubstr("\nwarn  1 configuration cannot be tuned: fill: "
                      "it uses shared memory\n")));
}

TEST_F(Doctor, SaysThatAProgramCannotBeStarted) {
  const Outcome outcome = doctor({"--", "./no-such-program"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(
      outcome.out,
      HasSubstr("\nfail  ./no-such-program cannot be started: No such"));
}

#ifdef PLAIN_LOADER_FILE
TEST_F(Doctor, FindsALoaderThatTakesNoLayers) {
  std::filesystem::copy_file(PLAIN_LOADER_FILE, folder.file("libOpenCL.so.1"));
  define("LD_LIBRARY_PATH", folder.text());
  const Outcome outcome = doctor();
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(
      outcome.out,
      AllOf(HasSubstr("\nok    OpenCL loader " + folder.file("libOpenCL.so.1")),
            HasSubstr("\nfail  the loader has not loaded the layer: ")));
}

TEST_F(Doctor, FindsThatThereIsNoLoader) {
  ASSERT_TRUE(folder.write("libOpenCL.so.1", "nothing"));
  define("LD_LIBRARY_PATH", folder.text());
  EXPECT_THAT(doctor().out, HasSubstr("\nfail  there is no OpenCL loader "));
}
#endif
