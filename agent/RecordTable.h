// Records by the OpenCL handle that they describe, found in constant time.

#pragma once

#include "agent/MapGrowth.h"

#include "llvm/ADT/DenseMap.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace corvane {

/// Owns records and finds them by handle. Behaves as a list that is searched
/// from the front: of two records of one handle the older one answers, and its
/// removal uncovers the next. Null records are counted and never found.
///
/// Not locked; whoever owns the table says what guards it. The record type need
/// only be complete where records are added or removed.
template <typename Handle, typename Record> class RecordTable {
public:
  /// The oldest record of \p handle, or null.
  Record *find(Handle handle) const {
    if (!canBeKey(handle))
      return nullptr;
    auto found = oldest.find(handle);
    return found == oldest.end() ? nullptr : found->second.get();
  }

  /// Whether \p handle has exactly one record.
  bool isUnique(Handle handle) const {
    if (!find(handle))
      return false;
    const auto waiting = younger.find(handle);
    return waiting == younger.end() || waiting->second.empty();
  }

  /// Makes sure that a record of \p handle can be appended without memory. An
  /// exception leaves the table as it was.
  void makeRoom(Handle handle) {
    if (!canBeKey(handle))
      return;
    if (!find(handle))
      return makeRoomForFirst();
    if (makeRoomForOne(younger, erasedYounger))
      erasedYounger = 0;
    auto &waiting = younger[handle];
    waiting.reserve(waiting.size() + 1);
  }

  /// Adds \p record behind all others and returns it. An exception leaves the
  /// table as it was.
  Record *append(Handle handle, std::unique_ptr<Record> record) {
    if (!record || !canBeKey(handle)) {
      ++count;
      return nullptr;
    }
    makeRoom(handle);
    Record *added = record.get();
    std::unique_ptr<Record> &first = oldest[handle];
    if (!first)
      first = std::move(record);
    else
      younger[handle].push_back(std::move(record));
    ++count;
    return added;
  }

  /// Takes the oldest record of \p handle out; null when there is none.
  std::unique_ptr<Record> remove(Handle handle) {
    if (!find(handle))
      return nullptr;
    std::unique_ptr<Record> &first = oldest.find(handle)->second;
    std::unique_ptr<Record> record = std::move(first);
    --count;
    const auto waiting = younger.find(handle);
    if (waiting == younger.end())
      return record;
    if (!waiting->second.empty()) {
      first = std::move(waiting->second.front());
      waiting->second.erase(waiting->second.begin());
    }
    if (waiting->second.empty()) {
      younger.erase(waiting);
      ++erasedYounger;
    }
    return record;
  }

  /// How many records there are, null ones included.
  std::size_t size() const { return count; }

  /// Whether a record of \p handle can be kept: the map below has two marks
  /// that no object of a runtime is at.
  static bool canBeKey(Handle handle) {
    using Info = llvm::DenseMapInfo<Handle>;
    return handle != Info::getEmptyKey() && handle != Info::getTombstoneKey();
  }

private:
  using FirstRecords = llvm::DenseMap<Handle, std::unique_ptr<Record>>;

  // For one entry too many there is a map that is at least half empty, and what
  // was removed is left out.
  void makeRoomForFirst() {
    const std::size_t places =
        oldest.getMemorySize() / sizeof(typename FirstRecords::value_type);
    if ((oldest.size() + 1) * 4 < places * 3)
      return;
    const auto kept = static_cast<unsigned>(
        std::count_if(oldest.begin(), oldest.end(), [](const auto &entry) {
          return entry.second != nullptr;
        }));
    FirstRecords grown(kept <= 16 ? 32 : 2 * kept - 1);
    for (auto &entry : oldest)
      if (entry.second)
        grown.try_emplace(entry.first, std::move(entry.second));
    oldest.swap(grown);
  }

  /// A removed record leaves its entry behind: runtimes give out handles again,
  /// and a map that forgets them one by one has to be tidied up again and
  /// again.
  FirstRecords oldest;
  /// All others, which hardly ever exist: a runtime that gives out a handle
  /// again has told of the end of its first object.
  llvm::DenseMap<Handle, std::vector<std::unique_ptr<Record>>> younger;
  std::size_t erasedYounger = 0; ///< at most so many, since younger grew
  std::size_t count = 0;
};

} // namespace corvane
