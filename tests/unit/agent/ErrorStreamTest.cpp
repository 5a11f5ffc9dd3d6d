// Tests of the line that tells of a refused file.

#include "agent/ErrorStream.h"
#include "tests/support/ErrorCapture.h"

#include <gtest/gtest.h>

using namespace corvane;
using namespace corvane::test;

TEST(RefusalLine, IsWrittenOnceForEachFile) {
  ErrorCapture errors;
  reportRefusedFile("first");
  reportRefusedFile("first");
  reportRefusedFile("second");
  reportRefusedFile("first");
  EXPECT_EQ(errors.text(), "CV: first is not a regular file and is not used.\n"
                           "CV: second is not a regular file and is not "
                           "used.\n");
}
