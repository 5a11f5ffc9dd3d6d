#include "coarsening/Preprocess.h"

#include <gmock/gmock.h>

using namespace corvane::coarsening;
using testing::ElementsAre;
using testing::HasSubstr;

static Preprocessed preprocessed(llvm::StringRef source,
                                 std::vector<std::string> options = {}) {
  std::optional<ProgramError> error;
  Preprocessed result = preprocess(source, readBuildOptions(options), error);
  EXPECT_FALSE(error) << error->message;
  return result;
}

TEST(Preprocessing, PutsTheProgramsMacrosIn) {
  EXPECT_THAT(preprocessed("#define A(x) x+B\nint a = A(1);", {"-DB=7"}).text,
              HasSubstr("int a = 1 +7;"));
}

TEST(Preprocessing, LeavesTheNamesThatTheCompilersHeaderDefines) {
  EXPECT_THAT(preprocessed("barrier(CLK_LOCAL_MEM_FENCE); x = M_PI_F;").text,
              HasSubstr("barrier(CLK_LOCAL_MEM_FENCE); x = M_PI_F;"));
}

TEST(Preprocessing, KeepsPragmas) {
  EXPECT_THAT(preprocessed("#pragma unroll 4\nfor").text,
              HasSubstr("#pragma unroll 4\n"));
}

TEST(Preprocessing, ListsTheMacrosOfTextAndOptions) {
  EXPECT_THAT(preprocessed("#define A\n#define C(x) x\n", {"-D", "B=1"}).macros,
              ElementsAre("A", "B", "C"));
}

TEST(Preprocessing, OfAProgramThatAsksForNothingHoldsEverywhere) {
  EXPECT_EQ(preprocessed("#define A 1\n#if A\nint a;\n#endif").condition, "1");
}

TEST(Preprocessing, RemembersWhatWasAskedOfTheCompiler) {
  EXPECT_EQ(preprocessed("#ifdef cl_khr_fp64\n#endif").condition,
            "defined(cl_khr_fp64) && cl_khr_fp64 == 1");
  EXPECT_EQ(preprocessed("#if defined(VENDOR) || 0\n#endif").condition,
            "!defined(VENDOR)");
  EXPECT_EQ(preprocessed("#if VENDOR > 3\n#endif").condition,
            "!defined(VENDOR)");
  EXPECT_EQ(preprocessed("int v = __OPENCL_C_VERSION__;").condition,
            "defined(__OPENCL_C_VERSION__) && __OPENCL_C_VERSION__ == 120");
}

TEST(Preprocessing, RemembersAConstantThatTheProgramAsksForBeforeItDefinesIt) {
  EXPECT_EQ(preprocessed("#ifndef OTHER\n#define OTHER 3\n#endif").condition,
            "!defined(OTHER)");
  const Preprocessed known =
      preprocessed("#ifndef M_PI_F\n#define M_PI_F 3\n#endif\nx = M_PI_F;");
  EXPECT_EQ(known.condition, "defined(M_PI_F)");
  EXPECT_THAT(known.text, HasSubstr("x = M_PI_F;"));
}

TEST(Preprocessing, TakesTheLanguageFromTheOptions) {
  EXPECT_THAT(preprocessed("v = __OPENCL_C_VERSION__;", {"-cl-std=CL2.0"}).text,
              HasSubstr("v = 200"));
}

TEST(Preprocessing, SaysWhatIsWrong) {
  std::optional<ProgramError> error;
  const Preprocessed result =
      preprocess("#include \"no such file\"", readBuildOptions({}), error);
  ASSERT_TRUE(error);
  EXPECT_THAT(error->message, HasSubstr("no such file"));
  EXPECT_EQ(result.text, "");
}

TEST(BuildOptions, AreReadInBothSpellings) {
  const BuildOptions options = readBuildOptions(
      {"-D", "A", "-DB=2", "-I", "folder", "-cl-mad-enable", "-w", "-D"});
  EXPECT_THAT(options.preprocessing,
              ElementsAre("-D", "A", "-D", "B=2", "-I", "folder"));
  EXPECT_THAT(options.language, ElementsAre("-cl-std=CL1.2"));
}
