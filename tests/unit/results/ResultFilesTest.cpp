// Tests of where the result files are.

#include "results/ResultFiles.h"

#include <gtest/gtest.h>

using namespace corvane;

TEST(ResultPath, KeepsTheTextOfTheDirectory) {
  EXPECT_EQ(resultPath("out", resultFile::rawLog), "out/.auto.csv");
  EXPECT_EQ(resultPath("out/", resultFile::rawLog), "out//.auto.csv");
  EXPECT_EQ(resultPath("C:\\out dir ", resultFile::table),
            "C:\\out dir /autotune.csv");
  EXPECT_EQ(pagePath("out", resultFile::indexPage), "out/html/index.html");
}

TEST(ResultPath, OfAnEmptyDirectoryIsAtTheRoot) {
  EXPECT_EQ(resultPath("", resultFile::rawLog), "/.auto.csv");
}
