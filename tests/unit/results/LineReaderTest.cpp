// Lines out of files of any shape.

#include "results/LineReader.h"

#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;

static std::vector<std::string> linesOf(const std::string &bytes) {
  TempFolder folder;
  EXPECT_TRUE(folder.write("file", bytes));
  LineReader reader(folder.file("file"));
  std::vector<std::string> lines;
  while (const std::optional<std::string_view> line = reader.next())
    lines.emplace_back(*line);
  EXPECT_FALSE(reader.next()) << "the end must stay the end";
  return lines;
}

TEST(LineReader, FindsNoLineInAFileThatIsMissing) {
  TempFolder folder;
  LineReader reader(folder.file("missing"));
  EXPECT_FALSE(reader.next());
  EXPECT_FALSE(reader.next());
}

TEST(LineReader, FindsNoLineInAFolder) {
  TempFolder folder;
  LineReader reader(folder.text());
  EXPECT_FALSE(reader.next());
}

TEST(LineReader, FindsNoLineInAnEmptyFile) {
  EXPECT_THAT(linesOf(""), IsEmpty());
}

TEST(LineReader, CutsAtLineFeedsOnly) {
  EXPECT_THAT(linesOf("a\nb\r\nc\rd\n"), ElementsAre("a", "b\r", "c\rd"));
}

TEST(LineReader, KeepsEmptyLines) {
  EXPECT_THAT(linesOf("\n\na\n\n"), ElementsAre("", "", "a", ""));
}

TEST(LineReader, TakesALastLineWithoutItsLineFeed) {
  EXPECT_THAT(linesOf("a\nb"), ElementsAre("a", "b"));
}

TEST(LineReader, KeepsNulBytes) {
  using namespace std::string_literals;
  EXPECT_THAT(linesOf("a\0b\n\0\n"s), ElementsAre("a\0b"s, "\0"s));
}

TEST(LineReader, TakesLinesOfAnyLength) {
  const std::string shorter(300'000, 'x');
  const std::string longer(2'000'000, 'y');
  EXPECT_THAT(linesOf(shorter + "\n" + longer + "\nz\n"),
              ElementsAre(shorter, longer, "z"));
}

TEST(LineReader, PutsLinesTogetherThatLieAcrossTwoBlocks) {
  std::string bytes;
  std::vector<std::string> expected;
  for (std::size_t i = 0; i != 200'000; ++i) {
    expected.push_back("line " + std::to_string(i));
    bytes += expected.back() + "\n";
  }
  EXPECT_EQ(linesOf(bytes), expected);
}
