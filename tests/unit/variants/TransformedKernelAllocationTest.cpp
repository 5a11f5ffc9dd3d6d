// Tests that asking the conditions of a variant allocates nothing.
#include "AllocationCount.h"
#include "variants/VariantName.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using corvane::test::allocationCount;

struct SetArgument {
  std::uint32_t index;
  std::size_t size;
  const void *value;
};

TEST(TransformedKernelAllocation, CountsWhatIsAllocated) {
  const long before = allocationCount();
  EXPECT_NE(corvane::parseVariantName("k_coarsed_r0g0S4d1S2"), nullptr);
  EXPECT_GT(allocationCount(), before);
}

TEST(TransformedKernelAllocation, AnswersALaunchWithoutAllocating) {
  const auto record = corvane::parseVariantName("k_coarsed_r0g0S4d1S2d2S8");
  ASSERT_NE(record, nullptr);
  const std::uint64_t value = 1024;
  const std::vector<SetArgument> arguments = {{1, sizeof value, &value},
                                              {2, sizeof value, &value}};
  const std::size_t global[] = {1024, 3};
  const std::size_t local[] = {64, 3};
  std::size_t outGlobal[2] = {};
  std::size_t outLocal[2] = {};

  const long before = allocationCount();
  const bool launch =
      corvane::prepareLaunch(*record, 2, global, local, outGlobal, outLocal);
  const bool accepted = corvane::acceptsArguments(arguments, *record);
  const long after = allocationCount();

  EXPECT_TRUE(launch);
  EXPECT_TRUE(accepted);
  EXPECT_EQ(outGlobal[0], 256U);
  EXPECT_EQ(after, before);
}

} // namespace
