// Tests of how the examples behave when something is wrong.

#include "tests/support/TempFolder.h"
#include "tests/system/ExampleRun.h"

#include <gmock/gmock.h>

using namespace corvane::test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class EveryExample : public testing::TestWithParam<const char *> {
protected:
  std::vector<std::string> command(const TempFolder &folder) const {
    const std::string name = GetParam();
    if (name == "blur")
      return {name, "--iterations", "1", "--output", folder.text()};
    if (name == "columns")
      return {name, "--iterations", "1", "--width", "64", "--height", "8"};
    return {name, "--iterations", "1", "--size",
            name == "matmul" ? "64" : "4096"};
  }
};

} // namespace

TEST_P(EveryExample, NoticesThatItsResultsAreWrong) {
  const TempFolder folder;
  const ExampleRun run = runExample(command(folder), layerBeside("LazyAgent"));
  EXPECT_EQ(run.program.exitCode, 1);
  EXPECT_FALSE(run.launches.empty());
  EXPECT_THAT(run.program.err, HasSubstr("wrong values"));
  ASSERT_FALSE(run.results.empty());
  for (const std::string &line : run.results)
    EXPECT_EQ(line.find(" wrong=0 "), std::string::npos) << line;
}

TEST_P(EveryExample, SaysWhatToInstallWhenThereIsNoPlatform) {
  const TempFolder folder;
  const ExampleRun run =
      runExample(command(folder), "", {{"OCL_ICD_VENDORS", folder.text()}});
  EXPECT_EQ(run.program.exitCode, 1);
  EXPECT_THAT(linesOf(run.program.err),
              ElementsAre(AllOf(StartsWith(GetParam()),
                                HasSubstr("apt-get install pocl-opencl-icd"))));
}

TEST_P(EveryExample, RefusesAnOptionThatItDoesNotHave) {
  const ExampleRun run = runExample({GetParam(), "--colour", "3"}, "");
  EXPECT_EQ(run.program.exitCode, 1);
  EXPECT_THAT(linesOf(run.program.err), ElementsAre(HasSubstr("--colour")));
}

TEST_P(EveryExample, RefusesANumberThatIsNone) {
  const ExampleRun run = runExample({GetParam(), "--iterations", "3x"}, "");
  EXPECT_EQ(run.program.exitCode, 1);
  EXPECT_THAT(linesOf(run.program.err), ElementsAre(HasSubstr("'3x'")));
}

TEST_P(EveryExample, ExplainsItsOptions) {
  const ExampleRun run = runExample({GetParam(), "--help"}, "");
  EXPECT_EQ(run.program.exitCode, 0);
  EXPECT_THAT(run.program.out,
              AllOf(HasSubstr("Usage:"), HasSubstr("--iterations")));
}

INSTANTIATE_TEST_SUITE_P(Examples, EveryExample,
                         testing::Values("matmul", "blur", "vector", "columns"),
                         [](const auto &parameter) {
                           return std::string(parameter.param);
                         });
