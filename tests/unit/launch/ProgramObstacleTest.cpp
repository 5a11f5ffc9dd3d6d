// Tests of what is found in the files that a program includes, and its options.

#include "launch/ProgramObstacle.h"

#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using namespace corvane;
using namespace corvane::test;

namespace {
constexpr const char *prints = "the program prints";

struct ProgramObstacle : testing::Test {
  std::string found(const std::string &source,
                    const std::string &options = "") const {
    return obstacleInProgram(source, options);
  }
  std::string includeOption() const { return "-I" + folder.text(); }

  const TempFolder folder;
};
} // namespace

TEST_F(ProgramObstacle, IsSeenInAnIncludedFile) {
  folder.write("says.h", "void say() { printf(\"a\"); }");
  folder.write("quiet.h", "int twice(int a) { return 2 * a; }");
  EXPECT_EQ(found("#include \"says.h\"\n", includeOption()), prints);
  EXPECT_EQ(found("#  include <says.h>\n", "-I " + folder.text()), prints);
  EXPECT_EQ(found("#include \"quiet.h\"\n", "-DA=1 " + includeOption()), "");
}

TEST_F(ProgramObstacle, IsSeenInWhatAnIncludedFileIncludes) {
  std::filesystem::create_directory(folder.path() / "deep");
  folder.write("deep/first.h", "#include \"second.h\"\n");
  folder.write("deep/second.h", "global int counter;");
  EXPECT_EQ(found("#include \"deep/first.h\"\n", includeOption()),
            "the program has writable variables outside of functions");
}

TEST_F(ProgramObstacle, IsAFileThatIsNotFound) {
  EXPECT_EQ(found("#include \"gone.h\"\n", includeOption()),
            "the program includes \"gone.h\", which was not found");
  EXPECT_EQ(found("#include \"/nowhere/gone.h\"\n"),
            "the program includes \"/nowhere/gone.h\", which was not found");
  EXPECT_EQ(found("#include NAME\n"),
            "the program includes a file that only its macros name");
}

TEST_F(ProgramObstacle, IsNoneInFilesThatIncludeEachOther) {
  folder.write("a.h", "#include \"b.h\"\n");
  folder.write("b.h", "#include \"a.h\"\n");
  EXPECT_EQ(found("#include \"a.h\"\n", includeOption()), "");
}

TEST_F(ProgramObstacle, IsFoundInAFolderWithBlanks) {
  std::filesystem::create_directory(folder.path() / "with blank");
  folder.write("with blank/says.h", "#define say printf\n");
  EXPECT_EQ(found("#include \"says.h\"\n",
                  "\"-I" + folder.text() + "/with blank\" -DB"),
            prints);
}

TEST_F(ProgramObstacle, IsSeenInAMacroOfTheOptions) {
  EXPECT_EQ(found("kernel void k() { LOG(\"a\"); }", "-DLOG=printf"), prints);
  EXPECT_EQ(found("kernel void k() {}", "-DN=4 -cl-fast-relaxed-math"), "");
}
