// Growth of LLVM's hash maps that is safe when there is no memory for it.

#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>

namespace corvane {

/// Makes sure that one more entry in \p map, an llvm::DenseMap, needs no
/// memory. An exception leaves the map as it was.
///
/// A map that grows by itself counts the new buckets before it has them; behind
/// an exception it can neither be used nor destroyed. This grows it at the same
/// moment and to the same size, so its order is what it would have been.
///
/// \p erased is at least how many entries were erased since the map last grew.
/// Returns whether the map grew.
template <typename Map> bool makeRoomForOne(Map &map, std::size_t erased = 0) {
  const std::size_t buckets =
      map.getMemorySize() / sizeof(typename Map::value_type);
  const auto fills = [buckets](std::size_t entries) {
    return entries * 4 >= buckets * 3;
  };
  const std::size_t entries = map.size() + 1;
  if (!fills(entries + erased))
    return false;

  const std::size_t wanted =
      std::max<std::size_t>(64, fills(entries) ? 2 * buckets : buckets);
  // The map is asked for entries and makes them buckets, a power of two.
  Map grown(static_cast<unsigned>(wanted / 2));
  for (auto &entry : map)
    grown.try_emplace(entry.first, std::move(entry.second));
  map.swap(grown);
  return true;
}

} // namespace corvane
