// Tests of how result files are opened and written.

#include "base/RegularFile.h"
#include "base/Platform.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

using namespace corvane;
using namespace corvane::test;
using platform::FileUse;
using platform::OpenedFile;
using platform::openRegularFile;

static std::size_t write(const OpenedFile &opened, const std::string &text) {
  return platform::writeBytes(opened.file.get(), text.data(), text.size());
}

static std::string readAll(const OpenedFile &opened) {
  char bytes[64];
  return {bytes, std::fread(bytes, 1, sizeof bytes, opened.file.get())};
}

TEST(RegularFile, ThatIsReadGivesItsBytes) {
  const TempFolder folder;
  folder.write("file", "a\r\nb\n");
  const OpenedFile opened = openRegularFile(folder.file("file"), FileUse::Read);
  ASSERT_TRUE(opened.file);
  EXPECT_EQ(readAll(opened), "a\r\nb\n");
}

TEST(RegularFile, ThatIsMissingCannotBeReadAndIsNotMade) {
  const TempFolder folder;
  const OpenedFile opened = openRegularFile(folder.file("file"), FileUse::Read);
  EXPECT_FALSE(opened.file);
  EXPECT_FALSE(opened.refused);
  EXPECT_FALSE(folder.has("file"));
}

TEST(RegularFile, ThatIsReplacedLosesWhatItHeld) {
  const TempFolder folder;
  folder.write("file", "much longer than before");
  const OpenedFile opened =
      openRegularFile(folder.file("file"), FileUse::Replace);
  ASSERT_TRUE(opened.file);
  EXPECT_EQ(folder.read("file"), "");
  EXPECT_EQ(write(opened, "new\n"), 4U);
  EXPECT_EQ(folder.read("file"), "new\n");
}

TEST(RegularFile, ThatIsReplacedOrAppendedIsMadeIfItIsMissing) {
  const TempFolder folder;
  EXPECT_TRUE(openRegularFile(folder.file("one"), FileUse::Replace).file);
  EXPECT_TRUE(openRegularFile(folder.file("two"), FileUse::Append).file);
  EXPECT_TRUE(folder.has("one"));
  EXPECT_TRUE(folder.has("two"));
}

TEST(RegularFile, ThatIsAppendedKeepsWhatItHoldsAndIsWrittenAtItsEnd) {
  const TempFolder folder;
  folder.write("file", "old\n");
  const OpenedFile opened =
      openRegularFile(folder.file("file"), FileUse::Append);
  ASSERT_TRUE(opened.file);
  EXPECT_EQ(readAll(opened), "old\n");
  ASSERT_EQ(std::fseek(opened.file.get(), 0, SEEK_SET), 0);
  EXPECT_EQ(write(opened, "new\n"), 4U);
  EXPECT_EQ(folder.read("file"), "old\nnew\n");
}

TEST(RegularFile, ThatIsOnlyAddedToKeepsWhatItHolds) {
  const TempFolder folder;
  folder.write("file", "old\n");
  EXPECT_EQ(
      write(openRegularFile(folder.file("file"), FileUse::AddOnly), "new\n"),
      4U);
  EXPECT_EQ(folder.read("file"), "old\nnew\n");
}

TEST(RegularFile, IsNoFolderWhichIsNoReasonForALine) {
  const TempFolder folder;
  for (const FileUse use : {FileUse::Read, FileUse::Replace, FileUse::Append}) {
    const OpenedFile opened = openRegularFile(folder.text(), use);
    EXPECT_FALSE(opened.file);
    EXPECT_FALSE(opened.refused);
  }
}

TEST(ReadRegularFile, GivesAllBytesUpToTheLimit) {
  const TempFolder folder;
  const std::string text(200000, 'x');
  folder.write("file", text + "\r\n");
  EXPECT_EQ(llvm::cantFail(readRegularFile(folder.file("file"), 200002)),
            text + "\r\n");
  EXPECT_EQ(
      llvm::toString(readRegularFile(folder.file("file"), 200001).takeError()),
      "it is larger than 0 MiB");
}

TEST(ReadRegularFile, TellsAFileThatIsNotThere) {
  const TempFolder folder;
  EXPECT_EQ(llvm::toString(readRegularFile(folder.file("file"), 9).takeError()),
            "it cannot be opened");
  EXPECT_NE(llvm::toString(readRegularFile(folder.text(), 9).takeError()), "")
      << "a folder has no bytes";
}
