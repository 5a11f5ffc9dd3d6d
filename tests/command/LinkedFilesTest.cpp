// Tests of files that lie behind symbolic links, on Posix systems.

#include "tests/command/Corvane.h"

using namespace corvane::test;
using testing::EndsWith;
using testing::HasSubstr;

namespace {
class LinkedFiles : public CorvaneTest {
protected:
  /// Moves a file of the test's folder away, and leaves a link to it.
  void replaceByALink(const std::string &name) const {
    const std::filesystem::path file = folder.file(name);
    std::filesystem::rename(file, folder.file("target"));
    std::filesystem::create_symlink(folder.file("target"), file);
  }
};
} // namespace

// The library refuses such a profile when the program runs already.
TEST_F(LinkedFiles, OfAProfileAreRefusedBeforeTheProgramRuns) {
  tuned({"record", "a", recordFile("r", fasterVariant())});
  replaceByALink("tuned/profile.json");
  const Outcome outcome = corvane(
      {"run", "--profile", output(), "--", APPLICATION_FILE, "say", "x"});
  EXPECT_EQ(outcome.exitCode, 125);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, EndsWith("cannot be used: it is no regular file\n"));
}

TEST_F(LinkedFiles, OfARecordArePassedOver) {
  tuned({"record", "a", recordFile("r", fasterVariant())});
  replaceByALink("tuned/runs/a/run.jsonl");
  EXPECT_THAT(tuned({}).err, HasSubstr("it is no regular file\n"));
}
