// Tests of names as text on a page: what is kept, and what is escaped.

#include "results/report/SafeText.h"

#include <gmock/gmock.h>

using namespace corvane;
using testing::Each;
using testing::Not;
using testing::Truly;

static const std::vector<std::string> ordinary = {
    "", "blur", "_Z3addPfS_", "k [ x:1024/64, y:8/8 ] ", "r1S2g0S4", "a$b"};

TEST(HtmlText, KeepsOrdinaryNames) {
  for (const std::string &name : ordinary)
    EXPECT_EQ(htmlText(name), name);
}

TEST(ScriptText, KeepsNamesOfVersions) {
  for (const char *name : {"", "baseline", "g0S4", "r1S2c0S2S2d3S4d5S16"})
    EXPECT_EQ(scriptText(name), name);
}

TEST(HtmlText, RefersToTheSignsOfHtml) {
  EXPECT_EQ(htmlText("</th><b a='1' b=\"2\">&lt;"),
            "&#60;/th&#62;&#60;b a=&#39;1&#39; b=&#34;2&#34;&#62;&#38;lt;");
}

TEST(ScriptText, EscapesWhatEndsALiteral) {
  EXPECT_EQ(scriptText("\\n"), "\\u005Cn");
  EXPECT_EQ(scriptText("\\"), "\\u005C");
  EXPECT_EQ(scriptText("\xe2\x80\xa8\xe2\x80\xa9"), "\\u2028\\u2029");
}

TEST(ScriptText, HasOnlyTheWideTwinsOfTheSignsOfHtml) {
  EXPECT_EQ(scriptText("</script>"), "\\uFF1C/script\\uFF1E");
  EXPECT_EQ(scriptText("<!--\"&'"), "\\uFF1C!--\\uFF02\\uFF06\\uFF07");
}

TEST(ScriptText, NamesNoPrototype) {
  EXPECT_EQ(scriptText("__proto__"), "\\uFF3F\\uFF3Fproto\\uFF3F\\uFF3F");
}

TEST(HtmlText, RefersToLettersBeyondAscii) {
  EXPECT_EQ(htmlText("\xc3\xa9"), "&#233;");
  EXPECT_EQ(htmlText("\xe2\x82\xac"), "&#8364;");
  EXPECT_EQ(htmlText("\xf0\x9f\x8d\x8c"), "&#127820;");
}

TEST(ScriptText, EscapesLettersBeyondAscii) {
  EXPECT_EQ(scriptText("\xc3\xa9"), "\\u00E9");
  EXPECT_EQ(scriptText("\xe2\x82\xac"), "\\u20AC");
  EXPECT_EQ(scriptText("\xf0\x9f\x8d\x8c"), "\\uD83C\\uDF4C");
}

TEST(HtmlText, ShowsThatACharacterCannotBeShown) {
  using namespace std::string_literals;
  for (const std::string &name :
       {"\0"s, "\n"s, "\r"s, "\t"s, "\x1b"s, "\x7f"s, "\xc2\x85"s, "\xc2\x9f"s})
    EXPECT_EQ(htmlText("a" + name + "b"), "a&#65533;b");
  EXPECT_EQ(htmlText("\xc2\xa0"), "&#160;");
}

TEST(ScriptText, ShowsThatACharacterCannotBeShown) {
  using namespace std::string_literals;
  for (const std::string &name : {"\0"s, "\n"s, "\r"s, "\x1b"s, "\xc2\x85"s})
    EXPECT_EQ(scriptText("a" + name + "b"), "a\\uFFFDb");
}

TEST(HtmlText, ShowsEachByteThatIsNoUtf8) {
  EXPECT_EQ(htmlText("\x80"), "&#65533;");
  EXPECT_EQ(htmlText("a\xff\xfe"), "a&#65533;&#65533;");
  EXPECT_EQ(htmlText("\xc3"), "&#65533;");       // incomplete
  EXPECT_EQ(htmlText("\xc3<"), "&#65533;&#60;"); // keeps "<"
  EXPECT_EQ(htmlText("\xc0\xbc"),
            "&#65533;&#65533;"); // "<" in an overlong form
  EXPECT_EQ(htmlText("\xed\xa0\x80"),
            "&#65533;&#65533;&#65533;"); // half a surrogate pair
}

TEST(ScriptText, ShowsEachByteThatIsNoUtf8) {
  EXPECT_EQ(scriptText("\x83\\"), "\\uFFFD\\u005C");
  EXPECT_EQ(scriptText("\xc3\""), "\\uFFFD\\uFF02");
}

// With ASCII alone a browser cannot guess a wrong character set.
TEST(SafeText, IsAsciiWithoutControlsOrSignsOfHtmlWhateverTheByte) {
  const auto isPlain = [](char c) {
    return c >= ' ' && c <= '~' && c != '<' && c != '>' && c != '"' &&
           c != '\'';
  };
  for (int byte = 0; byte != 256; ++byte)
    for (const char *next : {"", "a", "\"", "\x80", "\xbf\xbf\xbf"}) {
      const std::string name = std::string(1, static_cast<char>(byte)) + next;
      EXPECT_THAT(htmlText(name), Each(Truly(isPlain))) << byte;
      EXPECT_THAT(scriptText(name), Each(Truly(isPlain))) << byte;
      EXPECT_THAT(scriptText(name), Each(Not('&'))) << byte;
    }
}

TEST(AttributePath, ChangesNothingButQuotes) {
  EXPECT_EQ(attributePath("C:/my tools/x&y"), "C:/my tools/x&y");
  EXPECT_EQ(attributePath("/opt/\"><script>"), "/opt/&#34;><script>");
}
