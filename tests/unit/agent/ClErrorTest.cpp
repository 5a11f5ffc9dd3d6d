// Tests of the names of OpenCL's status codes.
#include "agent/ClError.h"

#include <gtest/gtest.h>

#include <limits>

using namespace corvane;

TEST(ErrorName, IsTheOneThatOpenClGivesToTheCode) {
  EXPECT_EQ(clErrorName(0), "CL_SUCCESS");
  EXPECT_EQ(clErrorName(-1), "CL_DEVICE_NOT_FOUND");
  EXPECT_EQ(clErrorName(-30), "CL_INVALID_VALUE");
}

TEST(ErrorName, ShowsACodeWithoutAName) {
  EXPECT_EQ(clErrorName(1), "unknown code(1)");
  EXPECT_EQ(clErrorName(std::numeric_limits<int>::min()),
            "unknown code(-2147483648)");
}
