// Fills the map with the variants and reads their order from it.

#include "launch/MapOrder.h"

#include "llvm/ADT/DenseMap.h"

using namespace corvane;

namespace {
using Map = llvm::DenseMap<cl_kernel, VariantKernel>;
} // namespace

static std::size_t bucketCount(const Map &map) {
  return map.getMemorySize() / sizeof(Map::value_type);
}

// A map that grows by itself counts the new buckets before it has them; if
// there is no memory for them, it can neither be used nor destroyed. This grows
// it at the same moment and to the same size.
static void makeRoomForOne(Map &map) {
  const std::size_t buckets = bucketCount(map);
  if ((map.size() + 1) * 4 < buckets * 3)
    return;
  // The map is asked for entries and makes twice as many buckets of them.
  Map grown(static_cast<unsigned>(buckets));
  for (const auto &entry : map)
    grown.try_emplace(entry.first, entry.second);
  map.swap(grown);
}

// Handles that the map uses as marks have no place in it; no object of a
// runtime lies there.
static bool canBeKey(cl_kernel kernel) {
  using Info = llvm::DenseMapInfo<cl_kernel>;
  return kernel != Info::getEmptyKey() && kernel != Info::getTombstoneKey();
}

void corvane::putInMapOrder(std::vector<VariantKernel> &variants) {
  constexpr unsigned entriesOfFirstBuckets = 47; // which are 64
  Map map(entriesOfFirstBuckets);
  for (const VariantKernel &variant : variants) {
    if (!canBeKey(variant.kernel) || map.count(variant.kernel) != 0)
      continue;
    makeRoomForOne(map);
    map.try_emplace(variant.kernel, variant);
  }
  auto next = variants.begin();
  for (const auto &entry : map)
    *next++ = entry.second;
  variants.erase(next, variants.end());
}
