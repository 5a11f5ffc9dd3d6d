// Settings are counted for as long as a program may run.

#include "launch/ArgMirror.h"

#include "agent/RuntimeTable.h"

#include <gtest/gtest.h>

using namespace corvane;

namespace {
int settings = 0;
cl_int lastValue = 0;

cl_int CL_API_CALL takeSetting(cl_kernel, cl_uint, size_t, const void *value) {
  ++settings;
  lastValue = *static_cast<const cl_int *>(value);
  return CL_SUCCESS;
}

struct ArgumentCounts : testing::Test {
  ArgumentCounts() {
    DispatchTable table{};
    table.clSetKernelArg = takeSetting;
    saveRuntimeTable(table);
    settings = 0;
  }

  void set(cl_int value) {
    makeRoomForArgument(record, 0, sizeof value, &value);
    recordArgument(record, 0, sizeof value, &value);
  }

  KernelRecord record{nullptr, nullptr, nullptr};
  VariantKernel variant{nullptr, nullptr};
};
} // namespace

// To set so many takes a minute, so the record is told that they were.
TEST_F(ArgumentCounts, GiveAVariantTheLastValueOfMoreThanFourBillion) {
  set(1);
  EXPECT_TRUE(replayArguments(record, variant.kernel, variant.argSyncCount));
  record.argSetCount += 0xFFFFFFFF;
  set(2);
  EXPECT_TRUE(replayArguments(record, variant.kernel, variant.argSyncCount));
  EXPECT_EQ(lastValue, 2);
  EXPECT_EQ(settings, 2);
}

TEST_F(ArgumentCounts, GiveAVariantNothingTwice) {
  record.argSetCount += 0xFFFFFFFF;
  set(1);
  for (int i = 0; i != 2; ++i)
    EXPECT_TRUE(replayArguments(record, variant.kernel, variant.argSyncCount));
  EXPECT_EQ(settings, 1);
}
