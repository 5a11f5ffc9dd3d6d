// Finds the order of LLVM's map, without the map where that can be done.

#include "launch/MapOrder.h"

#include "agent/MapGrowth.h"

#include "llvm/ADT/DenseMap.h"

#include <algorithm>
#include <cstdint>

using namespace corvane;

// What a map begins with, and how many entries let it grow.
static constexpr unsigned firstBuckets = 64;
static constexpr std::size_t tooManyForThem = 48;

static unsigned firstBucketOf(const VariantKernel &variant) {
  return llvm::DenseMapInfo<cl_kernel>::getHashValue(variant.kernel) %
         firstBuckets;
}

static bool haveBucketsOfTheirOwn(const std::vector<VariantKernel> &variants) {
  std::uint64_t taken = 0;
  for (const VariantKernel &variant : variants) {
    const std::uint64_t bucket = std::uint64_t{1} << firstBucketOf(variant);
    if (taken & bucket)
      return false;
    taken |= bucket;
  }
  return variants.size() < tooManyForThem;
}

static void putThroughMap(std::vector<VariantKernel> &variants) {
  llvm::DenseMap<cl_kernel, VariantKernel> map;
  for (const VariantKernel &variant : variants) {
    if (map.find(variant.kernel) == map.end())
      makeRoomForOne(map);
    map.try_emplace(variant.kernel, variant);
  }
  auto next = variants.begin();
  for (const auto &entry : map)
    *next++ = entry.second;
  variants.erase(next, variants.end());
}

// In a map that need not grow, what nobody else wants a bucket of lies in it.
void corvane::putInMapOrder(std::vector<VariantKernel> &variants) {
  if (!haveBucketsOfTheirOwn(variants))
    return putThroughMap(variants);
  std::sort(variants.begin(), variants.end(),
            [](const VariantKernel &a, const VariantKernel &b) {
              return firstBucketOf(a) < firstBucketOf(b);
            });
}
