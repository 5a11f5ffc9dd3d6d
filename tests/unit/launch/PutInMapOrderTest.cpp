// Tests of the map order of more variants than a runtime would create.

#include "launch/MapOrder.h"

#include "llvm/ADT/DenseMap.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <vector>

using namespace corvane;

static VariantKernel variantAt(std::uintptr_t address) {
  return {reinterpret_cast<cl_kernel>(address), nullptr};
}

static std::vector<cl_kernel>
ordered(const std::vector<std::uintptr_t> &addresses) {
  std::vector<VariantKernel> variants;
  for (const std::uintptr_t address : addresses)
    variants.push_back(variantAt(address));
  putInMapOrder(variants);
  std::vector<cl_kernel> kernels;
  for (const VariantKernel &variant : variants)
    kernels.push_back(variant.kernel);
  return kernels;
}

static std::vector<cl_kernel>
orderOfMap(const std::vector<std::uintptr_t> &addresses) {
  llvm::DenseMap<cl_kernel, int> map;
  for (const std::uintptr_t address : addresses)
    map.try_emplace(reinterpret_cast<cl_kernel>(address), 0);
  std::vector<cl_kernel> kernels;
  for (const auto &entry : map)
    kernels.push_back(entry.first);
  return kernels;
}

// Handles that have their own bucket each, whether the map has grown or not.
// When it grows, every second handle moves to the end.
static std::vector<std::uintptr_t> spread(std::uintptr_t count) {
  std::vector<std::uintptr_t> addresses;
  for (std::uintptr_t i = count; i != 0; --i)
    addresses.push_back(0x7f0000000000U + 16 * i + (i % 2 << 10));
  return addresses;
}

TEST(PutInMapOrder, IsTheOrderOfTheMapHoweverManyThereAre) {
  for (std::uintptr_t count = 0; count != 70; ++count)
    EXPECT_EQ(ordered(spread(count)), orderOfMap(spread(count))) << count;
}

TEST(PutInMapOrder, IsTheOrderOfTheMapWhereHandlesShareABucket) {
  const std::vector<std::uintptr_t> addresses = {0x10000, 0x20000, 0x10010,
                                                 0x30000, 0x10020};
  EXPECT_EQ(ordered(addresses), orderOfMap(addresses));
}

TEST(PutInMapOrder, IsTheOrderOfTheMapWhenItGrowsAgainAndAgain) {
  std::vector<std::uintptr_t> addresses;
  for (std::uintptr_t i = 1; i != 1000; ++i) {
    addresses.push_back(i * i * 48);
    if (i % 37 == 0) {
      EXPECT_EQ(ordered(addresses), orderOfMap(addresses)) << i;
    }
  }
}

// A map grows only for keys that it does not have.
TEST(PutInMapOrder, IsTheOrderOfTheMapWhereItIsNearlyFullAndOneHandleRepeats) {
  for (std::uintptr_t count = 40; count != 50; ++count) {
    std::vector<std::uintptr_t> addresses = spread(count);
    addresses.insert(addresses.end(), {0, 0});
    EXPECT_EQ(ordered(addresses), orderOfMap(addresses)) << count;
  }
}

TEST(PutInMapOrder, LeavesOutWhatLiesWhereNoObjectDoes) {
  EXPECT_THAT(ordered({0x10000, ~std::uintptr_t{0} << 12}),
              testing::ElementsAre(reinterpret_cast<cl_kernel>(0x10000)));
}

TEST(PutInMapOrder, KeepsTheFirstOfVariantsWithOneHandle) {
  EXPECT_THAT(ordered({0, 0x10000, 0}), testing::SizeIs(2));
}
