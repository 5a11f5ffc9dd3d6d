// Lets LLVM's own maps find the order, for it is theirs.

#include "launch/MapOrder.h"

#include "agent/MapGrowth.h"

#include "llvm/ADT/DenseMap.h"

using namespace corvane;

// What a map begins with, and how many entries let it grow.
static constexpr unsigned firstBuckets = 64;
static constexpr std::size_t tooManyForThem = 48;

template <typename Map>
static void readBack(const Map &map, std::vector<VariantKernel> &variants) {
  auto next = variants.begin();
  for (const auto &entry : map)
    *next++ = entry.second;
  variants.erase(next, variants.end());
}

static void orderThroughGrowingMap(std::vector<VariantKernel> &variants) {
  llvm::DenseMap<cl_kernel, VariantKernel> map;
  for (const VariantKernel &variant : variants) {
    makeRoomForOne(map);
    map.try_emplace(variant.kernel, variant);
  }
  readBack(map, variants);
}

// A map that begins on the stack has the order of one that begins elsewhere.
static void orderThroughSmallMap(std::vector<VariantKernel> &variants) {
  llvm::SmallDenseMap<cl_kernel, VariantKernel, firstBuckets> map;
  for (const VariantKernel &variant : variants)
    map.try_emplace(variant.kernel, variant);
  readBack(map, variants);
}

void corvane::putInMapOrder(std::vector<VariantKernel> &variants) {
  if (variants.size() < 2)
    return;
  if (variants.size() < tooManyForThem)
    orderThroughSmallMap(variants);
  else
    orderThroughGrowingMap(variants);
}
