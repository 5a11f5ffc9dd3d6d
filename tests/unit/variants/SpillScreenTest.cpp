// Tests of which build logs flag a variant.
#include "variants/SpillScreen.h"

#include "variants/VariantName.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

/// Screens a copy, because the screen changes the log.
bool flags(std::string log) { return corvane::screenBuildLog(log.data()); }

TEST(SpillScreen, FlagsAVariantFourWordsAfterTheCompileWord) {
  EXPECT_TRUE(flags("calclCompile a b c k_coarsed_g0S4"));
}

TEST(SpillScreen, TakesBlanksAndLineFeedsAsSeparators) {
  EXPECT_TRUE(flags("calclCompile\na\nb\nc\nk_coarsed_g0S4\n"));
  EXPECT_TRUE(flags("  \n calclCompile  a \n\n b   c\n \nk_coarsed_g0S4  "));
}

TEST(SpillScreen, TakesTabsAndCarriageReturnsAsLetters) {
  EXPECT_FALSE(flags("calclCompile\ta\tb\tc\tk_coarsed_g0S4"));
  EXPECT_FALSE(flags("calclCompile\r\na b c k_coarsed_g0S4"));
  EXPECT_TRUE(flags("calclCompile a\tx b\r c k_coarsed_g0S4"));
}

TEST(SpillScreen, PassesAKernelThatIsNoVariant) {
  EXPECT_FALSE(flags("calclCompile a b c k_coarsed_x1"));
  EXPECT_FALSE(flags("calclCompile a b c k"));
}

TEST(SpillScreen, LooksAtTheFourthWordOnly) {
  EXPECT_FALSE(flags("calclCompile a b k_coarsed_g0S4 c"));
  EXPECT_FALSE(flags("calclCompile a b c d k_coarsed_g0S4"));
}

TEST(SpillScreen, PassesALogThatEndsBeforeTheFourthWord) {
  EXPECT_FALSE(flags("calclCompile"));
  EXPECT_FALSE(flags("calclCompile a b"));
  EXPECT_FALSE(flags("calclCompile a b k_coarsed_g0S4"));
}

TEST(SpillScreen, NeverFlagsASpillWarning) {
  EXPECT_FALSE(
      flags("Warning: k_coarsed_g0S4 has register spilling. spilling."));
  EXPECT_FALSE(flags("Warning: k_coarsed_g0S4 a b c spilling."));
  EXPECT_FALSE(flags("Warning: k_coarsed_g0S4 a b c spilling.\n"
                     "Warning: k_coarsed_g1S4 a b c spilling.\n"));
}

TEST(SpillScreen, NeedsTheCompileWordToTheLetter) {
  EXPECT_FALSE(flags("calclCompile: a b c k_coarsed_g0S4"));
  EXPECT_FALSE(flags("calclcompile a b c k_coarsed_g0S4"));
  EXPECT_FALSE(flags("xcalclCompile a b c k_coarsed_g0S4"));
}

TEST(SpillScreen, DoesNotStartAtAWordThatACompileWordTook) {
  // The second compile word would flag the log, but it is among the four words
  // after the first one.
  EXPECT_FALSE(flags("calclCompile a calclCompile c d e k_coarsed_g0S4"));
  EXPECT_FALSE(flags("calclCompile a b c calclCompile e f g k_coarsed_g0S4"));
}

TEST(SpillScreen, DoesNotStartAtAWordThatAWarningTook) {
  EXPECT_FALSE(flags("Warning: calclCompile a b c k_coarsed_g0S4"));
  EXPECT_FALSE(flags("Warning: k a b c calclCompile e f g k_coarsed_g0S4"));
  EXPECT_FALSE(flags("Warning: k a b c spilling. x x k_coarsed_g0S4"));
}

TEST(SpillScreen, GoesOnAfterTheWordsThatWereTaken) {
  EXPECT_TRUE(flags("Warning: k a b c spilling. "
                    "calclCompile a b c k_coarsed_g0S4"));
  EXPECT_TRUE(flags("Warning: k a b c d calclCompile a b c k_coarsed_g0S4"));
  EXPECT_TRUE(flags("calclCompile a b c k calclCompile a b c k_coarsed_g0S4"));
}

TEST(SpillScreen, StartsAtAWarningOnlyWhenItIsAWholeWord) {
  EXPECT_TRUE(flags("warning: calclCompile a b c k_coarsed_g0S4"));
  EXPECT_TRUE(flags("Warning calclCompile a b c k_coarsed_g0S4"));
  EXPECT_TRUE(flags("xWarning: calclCompile a b c k_coarsed_g0S4"));
}

TEST(SpillScreen, StaysFlaggedByLaterWords) {
  EXPECT_TRUE(flags("calclCompile a b c k_coarsed_g0S4 "
                    "calclCompile a b c k Warning:"));
  EXPECT_TRUE(flags("calclCompile a b c k_coarsed_g0S4 "
                    "calclCompile a b c k_coarsed_g1S4"));
}

TEST(SpillScreen, PassesALogWithoutWords) {
  EXPECT_FALSE(flags(""));
  EXPECT_FALSE(flags(" \n \n"));
}

TEST(SpillScreen, PassesALogThatEndsInsideAWarning) {
  EXPECT_FALSE(flags("Warning:"));
  EXPECT_FALSE(flags("Warning: k_coarsed_g0S4 a"));
}

/// The same decision, made on a list of words.
bool wordsFlag(const std::vector<std::string> &words) {
  bool flagged = false;
  for (std::size_t i = 0; i < words.size(); ++i)
    if (words[i] == "Warning:") {
      i += 5;
    } else if (words[i] == "calclCompile") {
      i += 4;
      flagged = flagged || (i < words.size() &&
                            corvane::parseVariantName(words[i]) != nullptr);
    }
  return flagged;
}

TEST(SpillScreen, FindsTheSameInAnyLogAsInItsWords) {
  const std::vector<std::string> known = {
      "Warning:",  "calclCompile",   "calclCompile:", "calclcompile",
      "spilling.", "k_coarsed_g0S4", "k_coarsed_x1",  "k",
      "\t",        "\xff\x01"};
  const char *const separators[] = {" ", "\n", "  ", " \n "};
  std::mt19937 random(20240313);
  int flagged = 0;
  for (int round = 0; round != 20000; ++round) {
    std::vector<std::string> words;
    std::string log;
    for (auto count = random() % 32; count != 0; --count) {
      words.push_back(known[random() % known.size()]);
      log += words.back() + separators[random() % 4];
    }
    ASSERT_EQ(flags(log), wordsFlag(words)) << log;
    flagged += wordsFlag(words);
  }
  // Both answers occurred, or the comparison would prove little.
  EXPECT_GT(flagged, 1000);
  EXPECT_LT(flagged, 19000);
}

TEST(SpillScreen, EndsAtTheFirstNul) {
  EXPECT_FALSE(flags(std::string("calclCompile a b\0c k_coarsed_g0S4", 33)));
  EXPECT_FALSE(flags(std::string("\0calclCompile a b c k_coarsed_g0S4", 34)));
}

TEST(SpillScreen, CutsTheWordsInPlace) {
  std::string log = "one two\nthree";
  EXPECT_FALSE(corvane::screenBuildLog(log.data()));
  EXPECT_EQ(log, std::string("one\0two\0three", 13));
}

} // namespace
