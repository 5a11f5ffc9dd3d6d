// Programs whose variants corvane checks in a simulator, and programs that
// corvane examines.

#include "tests/support/TempFolder.h"
#include "tests/system/Subprocess.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

using namespace corvane::test;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

namespace {
class CheckedProgram : public testing::Test {
protected:
  static ProgramRun corvane(const char *command, const char *program,
                            const char *kernel) {
    std::filesystem::create_directories(KERNEL_CACHE_FOLDER);
    return runProgram({CORVANE_FILE, command, "--",
                       std::string(HOSTS_FOLDER) + program, kernel},
                      {{"POCL_CACHE_DIR", KERNEL_CACHE_FOLDER}});
  }
  static ProgramRun checked(const char *kernel) {
    return corvane("check", "/flaws", kernel);
  }
};
} // namespace

TEST_F(CheckedProgram, IsLeftAloneWhenItsVariantsAreSound) {
  const ProgramRun run = checked("sound");
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out, AllOf(HasSubstr("ok    variant g0S2 of sound\n"),
                             Not(HasSubstr("fail"))));
}

TEST_F(CheckedProgram, HasAVariantThatWritesOutOfBounds) {
  const ProgramRun run = checked("beyond");
  EXPECT_EQ(run.exitCode, 1) << run.out << run.err;
  EXPECT_THAT(run.out,
              HasSubstr("fail  variant g0S2 of beyond: Invalid write of size 4 "
                        "at global memory by work-item (511,0,0), line 23 of "
                        "input.cl, \"y[i + 1] = x[i] + times;\""));
}

TEST_F(CheckedProgram, HasAVariantWithARace) {
  const ProgramRun run = checked("racing");
  EXPECT_EQ(run.exitCode, 1) << run.out << run.err;
  EXPECT_THAT(run.out, ContainsRegex("fail  variant g0S2 of racing: .*data "
                                     "race at global memory by work-item "
                                     ".*line 34 of input.cl"));
}

TEST_F(CheckedProgram, HasAVariantThatUsesAValueThatWasNeverSet) {
  const ProgramRun run = checked("unset");
  EXPECT_EQ(run.exitCode, 1) << run.out << run.err;
  EXPECT_THAT(run.out, ContainsRegex("fail  variant g0S2 of unset: "
                                     "Uninitialized value .*line [0-9]+ of"));
}

TEST_F(CheckedProgram, IsNotBlamedForWhatItsOwnKernelDoes) {
  const ProgramRun run = checked("both");
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out,
              AllOf(HasSubstr("warn  kernel both itself: Invalid write"),
                    HasSubstr("ok    variant g0S2 of both\n")));
}

TEST_F(CheckedProgram, HasAVariantWithOtherResults) {
  const ProgramRun run = corvane("check", "/flaws", "other");
  EXPECT_EQ(run.exitCode, 1) << run.out << run.err;
  EXPECT_THAT(run.out, ContainsRegex("fail  variant g0S2 of other .*wrong "
                                     "results: argument 0, element "));
}

TEST_F(CheckedProgram, IsExaminedByTheDoctor) {
  const ProgramRun run = corvane("doctor", "/flaws", "sound");
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(
      run.out,
      AllOf(HasSubstr("ok    the loader takes the layer, and the layer has "
                      "started the agent\n"),
            HasSubstr(": builds from source, runs a kernel and tells its "
                      "time\n"),
            ContainsRegex("ok    the program loads .*libOpenCL"),
            HasSubstr("ok    6 launches through the layer\n"),
            HasSubstr("ok    2 configurations with variants can be tuned\n"),
            Not(HasSubstr("fail"))));
}
