// Tests of the names of pages: ordinary ones byte for byte, others made
// harmless.

#include "results/report/PageLinks.h"

#include "Configs.h"

#include <gmock/gmock.h>

#include <set>

using namespace corvane;
using namespace corvane::test;
using testing::EndsWith;
using testing::SizeIs;

static std::string nameOf(const LaunchKey &key) {
  PageNames names;
  return names.nameFor(key);
}

// Without a regular expression: GoogleTest's have no character classes on
// Windows.
static bool isFit(const std::string &name) {
  return !name.empty() && name.size() <= 244 &&
         name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                "abcdefghijklmnopqrstuvwxyz"
                                "0123456789_$-") == std::string::npos;
}

static std::string nameOf(const std::string &kernel) {
  return nameOf(keyOf(kernel));
}

TEST(PageName, JoinsTheKeyWithUnderscores) {
  EXPECT_EQ(nameOf(sized({"1", "2", "3"}, {"4", "5", "6"})), "k_1_2_3_4_5_6");
}

TEST(PageName, HasAdjacentUnderscoresForEmptySizes) {
  EXPECT_EQ(nameOf("k"), "k_1024___64__");
  EXPECT_EQ(nameOf(sized({"", "", ""}, {"", "", ""})), "k______");
}

TEST(PageName, KeepsWhatACompilerMakes) {
  for (const std::string kernel :
       {"blur", "_Z3addPfS_", "a__b", "Kernel$1", "CON", "nul", "index", "0"})
    EXPECT_EQ(nameOf(kernel), kernel + "_1024___64__");
}

TEST(PageName, KeepsAsMuchAsAFileNameCanHold) {
  // A file name has at most 255 bytes: "_graph.html" is 11 of them, the
  // sizes 12.
  const std::string longest(255 - 11 - 12, 'k');
  EXPECT_EQ(nameOf(longest), longest + "_1024___64__");
  EXPECT_EQ(nameOf(longest + "k"), std::string(150, 'k') + "-1");
}

TEST(PageName, ReplacesWhatWouldLeadElsewhere) {
  EXPECT_EQ(nameOf("../up"), "---up_1024___64__-1");
  EXPECT_EQ(nameOf("a/b"), "a-b_1024___64__-1");
  EXPECT_EQ(nameOf("a\\b"), "a-b_1024___64__-1");
  EXPECT_EQ(nameOf("C:x"), "C-x_1024___64__-1");
  EXPECT_EQ(nameOf("CON.x"), "CON-x_1024___64__-1");
  EXPECT_EQ(nameOf(sized({"1", "", ""}, {"/../..", "", ""})),
            "k_1___------__-1");
}

TEST(PageName, ReplacesWhatALinkOrAPageWouldTakeForSomethingElse) {
  for (const char byte : std::string("%?#:;&<>\"'*|+=~ ,.-\t\r\n\x01\x7f\x80"))
    EXPECT_EQ(nameOf(std::string("a") + byte + "b"), "a-b_1024___64__-1")
        << static_cast<int>(byte);
  EXPECT_EQ(nameOf(std::string("a\0b", 3)), "a-b_1024___64__-1");
  EXPECT_EQ(nameOf("\xc3\xa9"), "--_1024___64__-1");
}

TEST(PageName, TakesNoTextButDigitsForASize) {
  for (const std::string size : {"-1", "+1", "1e3", " 64", "64 ", "x", "_"})
    EXPECT_THAT(nameOf(sized({size, "", ""}, {"", "", ""})), EndsWith("-1"))
        << size;
}

TEST(PageName, IsAlwaysFitForALinkAndAFile) {
  PageNames names;
  for (int byte = 0; byte != 256; ++byte)
    for (const std::size_t length : {1U, 300U, 5000U}) {
      const std::string kernel(length, static_cast<char>(byte));
      EXPECT_PRED1(isFit, names.nameFor(keyOf(kernel)));
    }
}

TEST(PageName, IsNeverGivenTwice) {
  PageNames names;
  std::set<std::string> given;
  std::size_t count = 0;
  const auto add = [&](const LaunchKey &key) {
    given.insert(names.nameFor(key));
    ++count;
  };
  for (const std::string kernel :
       {"a", "a_", "a_1", "a-1", "a/1", "a\\1", "a-b_1024___64__-1", "", "_"})
    add(keyOf(kernel));
  for (const std::string size : {"", "1", "01", "1_2", "_1", "-1", "/1"})
    add(sized({size, "2", ""}, {size, "", ""}));
  add(keyOf("a"));
  add(keyOf(std::string(300, 'k') + "a"));
  add(keyOf(std::string(300, 'k') + "b"));
  EXPECT_THAT(given, SizeIs(count));
}

// "x" + "_graph" would be the graph page of "x" and the frame page of another.
TEST(PageName, DoesNotEndAsAnotherPagesNameDoes) {
  PageNames names;
  EXPECT_EQ(names.nameFor(sized({"1", "", ""}, {"1", "", ""})), "k_1___1__");
  EXPECT_EQ(names.nameFor(sized({"1", "", ""}, {"1", "", "_graph"})),
            "k_1___1___graph-2");
  EXPECT_EQ(names.nameFor(sized({"1", "", ""}, {"1", "", "_table"})),
            "k_1___1___table-3");
}

#ifdef _WIN32
static constexpr const char *secondBlur = "BLUR_1024___64__-2";
#else
static constexpr const char *secondBlur = "BLUR_1024___64__";
#endif

TEST(PageName, DiffersByMoreThanCapitalsWhereFilesMust) {
  PageNames names;
  EXPECT_EQ(names.nameFor(keyOf("blur")), "blur_1024___64__");
  EXPECT_EQ(names.nameFor(keyOf("BLUR")), secondBlur);
}

TEST(ConfigTitle, ListsTheDimensionsOfTheLaunch) {
  EXPECT_EQ(configTitle(sized({"1024", "", ""}, {"64", "", ""})),
            "k [ x:1024/64 ] ");
  EXPECT_EQ(configTitle(sized({"1024", "8", ""}, {"64", "8", ""})),
            "k [ x:1024/64, y:8/8 ] ");
  EXPECT_EQ(configTitle(sized({"1", "2", "3"}, {"4", "5", "6"})),
            "k [ x:1/4, y:2/5, z:3/6 ] ");
}

TEST(ConfigTitle, HasACommaBeforeTheSecondDimensionEvenWithoutAFirst) {
  EXPECT_EQ(configTitle(sized({"", "8", ""}, {"", "8", ""})), "k [ , y:8/8 ] ");
  EXPECT_EQ(configTitle(sized({"", "", ""}, {"1", "1", "1"})), "k [  ] ");
}
