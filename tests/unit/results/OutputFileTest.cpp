// A stream into a file that may not exist.

#include "results/OutputFile.h"

#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

using namespace corvane;
using namespace corvane::test;

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
  testing::internal::CaptureStderr();
  {
    OutputFile out(folder.file("missing/a"));
    out << std::string(200'000, 'x');
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_FALSE(folder.has("missing"));
}
