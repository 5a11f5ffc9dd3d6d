// Tests of a kernel whose arguments have been set more than 2^32 times.

#include "launch/RecordedArguments.h"

#include "agent/RuntimeTable.h"

#include <gtest/gtest.h>

using namespace corvane;

namespace {
int replayed = 0;
cl_int lastValue = 0;

cl_int CL_API_CALL takeSetting(cl_kernel, cl_uint, size_t, const void *value) {
  ++replayed;
  lastValue = *static_cast<const cl_int *>(value);
  return CL_SUCCESS;
}

/// A kernel whose arguments have been set nearly 2^32 times.
struct RecordedArgumentsInTheLongRun : testing::Test {
  RecordedArgumentsInTheLongRun() {
    DispatchTable table{};
    table.clSetKernelArg = takeSetting;
    saveRuntimeTable(table);
    replayed = 0;
  }

  void set(cl_int value) {
    arguments.reserve(0, sizeof value, &value);
    arguments.record(0, sizeof value, &value);
  }

  RecordedArguments arguments{0xFFFFFFFE};
  std::uint64_t seen = 0;
};
} // namespace

TEST_F(RecordedArgumentsInTheLongRun, ReplayTheLastValue) {
  for (cl_int value = 1; value != 5; ++value) {
    set(value);
    EXPECT_TRUE(arguments.replay(nullptr, seen));
    EXPECT_EQ(lastValue, value);
  }
  EXPECT_EQ(replayed, 4);
}

TEST_F(RecordedArgumentsInTheLongRun, ReplayNothingTwice) {
  set(1);
  set(2);
  for (int i = 0; i != 2; ++i)
    EXPECT_TRUE(arguments.replay(nullptr, seen));
  EXPECT_EQ(replayed, 1);
}
