// Tests of reading files by lines, whatever is in them, and of writing files.

#include "results/Files.h"

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
  std::string_view line;
  while (reader.next(line))
    lines.emplace_back(line);
  EXPECT_FALSE(reader.next(line)) << "after the end there are no more lines";
  EXPECT_EQ(llvm::toString(reader.takeError()), "");
  return lines;
}

TEST(LineReader, FindsNoLineInAFileThatIsMissing) {
  TempFolder folder;
  const std::string missing = folder.file("missing");
  LineReader reader(missing);
  std::string_view line;
  EXPECT_FALSE(reader.next(line));
  EXPECT_FALSE(reader.next(line));
  EXPECT_EQ(llvm::toString(reader.takeError()), missing + ": cannot be opened");
}

TEST(LineReader, FindsNoLineInAFolder) {
  TempFolder folder;
  LineReader reader(folder.text());
  std::string_view line;
  EXPECT_FALSE(reader.next(line));
  EXPECT_NE(llvm::toString(reader.takeError()), "");
}

TEST(LineReader, GivesUpALineThatWouldTakeAllMemory) {
  TempFolder folder;
  const std::string path = folder.file("file");
  ASSERT_TRUE(folder.write("file", "a\n" + std::string(20'000'000, 'x')));
  LineReader reader(path);
  std::string_view line;
  EXPECT_TRUE(reader.next(line));
  EXPECT_EQ(line, "a");
  EXPECT_FALSE(reader.next(line));
  EXPECT_FALSE(reader.next(line));
  EXPECT_EQ(llvm::toString(reader.takeError()),
            path + ": has a line that is too long");
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

TEST(OutputFile, WritesBytesAsTheyAre) {
  TempFolder folder;
  { OutputFile(folder.file("a")) << "x\n" << '\0' << "\r\n\xff"; }
  EXPECT_EQ(folder.read("a"), std::string("x\n\0\r\n\xff", 6));
}

TEST(OutputFile, ReplacesWhatWasThere) {
  TempFolder folder;
  ASSERT_TRUE(folder.write("a", "something long"));
  { OutputFile(folder.file("a")) << "short"; }
  EXPECT_EQ(folder.read("a"), "short");
}

TEST(OutputFile, IsMadeEvenIfNothingIsWritten) {
  TempFolder folder;
  { OutputFile out(folder.file("a")); }
  EXPECT_TRUE(folder.has("a"));
}

TEST(OutputFile, TakesMoreThanItsBuffer) {
  TempFolder folder;
  std::string expected;
  {
    OutputFile out(folder.file("a"));
    for (int i = 0; i != 50'000; ++i) {
      out << i << "\n";
      expected += std::to_string(i) + "\n";
    }
    EXPECT_EQ(out.tell(), expected.size());
  }
  EXPECT_EQ(folder.read("a"), expected);
}

TEST(OutputFile, DropsEverythingWhenItCannotBeOpened) {
  TempFolder folder;
  OutputFile out(folder.file("missing/a"));
  out << std::string(200'000, 'x');
  EXPECT_EQ(llvm::toString(out.finish()),
            folder.file("missing/a") + ": cannot be opened");
  EXPECT_FALSE(folder.has("missing"));
}
