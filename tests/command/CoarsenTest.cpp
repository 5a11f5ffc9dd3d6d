// corvane coarsen.

#include "tests/command/Corvane.h"

using namespace corvane::test;
using testing::AllOf;
using testing::HasSubstr;

namespace {
class Coarsen : public CorvaneTest {};
} // namespace

TEST_F(Coarsen, TellsWhereToGetTheToolIfItIsNotThere) {
  const std::filesystem::path original = CORVANE_FILE;
  const std::string lonely = (folder.path() / original.filename()).string();
  std::filesystem::copy_file(original, lonely);
  const Outcome outcome = runProgram({lonely, "coarsen", "blur.cl"});
  EXPECT_EQ(outcome.exitCode, 125);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("corvane-coarsen"),
                                 HasSubstr(" is not there: build it with ")));
}

#ifdef COARSENER_FILE
static const char *const scaling = "kernel void scale(global float *v) {\n"
                                   "  v[get_global_id(0)] *= FACTOR;\n"
                                   "}\n";

TEST_F(Coarsen, PrintsTheSourceWithItsVariants) {
  ASSERT_TRUE(folder.write("scale.cl", scaling));
  const Outcome outcome = corvane({"coarsen", folder.file("scale.cl"),
                                   "--plans", "g0S4", "--", "-D", "FACTOR=3"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out,
              AllOf(HasSubstr(scaling), HasSubstr("scale_coarsed_g0S4(")));
}

TEST_F(Coarsen, WritesFilesWhereItIsToldTo) {
  ASSERT_TRUE(folder.write("scale.cl", scaling));
  const Outcome outcome =
      corvane({"coarsen", folder.file("scale.cl"), "--plans", "g0S4,g1S2",
               "--output", folder.file("made.cl"), "--refusals",
               folder.file("why.json"), "--", "-DFACTOR=3"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(folder.read("made.cl"), HasSubstr("scale_coarsed_g0S4("));
  EXPECT_THAT(folder.read("why.json"),
              AllOf(HasSubstr("\"g0S4\""), HasSubstr("\"g1S2\"")));
}

TEST_F(Coarsen, FailsWhereTheSourceCannotBeBuilt) {
  ASSERT_TRUE(folder.write("scale.cl", scaling));
  const Outcome outcome = corvane({"coarsen", folder.file("scale.cl")});
  EXPECT_NE(outcome.exitCode, 0);
  EXPECT_THAT(outcome.err, HasSubstr("FACTOR"));
}
#endif
