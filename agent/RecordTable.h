// Records by the OpenCL handle that they describe, found in constant time.

#pragma once

#include "agent/MapGrowth.h"

#include "llvm/ADT/DenseMap.h"

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
    if (makeRoomForOne(oldest, erased))
      erased = 0;
    if (!find(handle))
      return;
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
    const auto [first, isFirst] = oldest.try_emplace(handle);
    if (isFirst)
      first->second = std::move(record);
    else
      younger[handle].push_back(std::move(record));
    ++count;
    return added;
  }

  /// Takes the oldest record of \p handle out; null when there is none.
  std::unique_ptr<Record> remove(Handle handle) {
    if (!canBeKey(handle))
      return nullptr;
    auto found = oldest.find(handle);
    if (found == oldest.end())
      return nullptr;
    std::unique_ptr<Record> record = std::move(found->second);
    --count;
    const auto waiting = younger.find(handle);
    if (waiting != younger.end() && !waiting->second.empty()) {
      found->second = std::move(waiting->second.front());
      waiting->second.erase(waiting->second.begin());
    } else {
      oldest.erase(found);
      ++erased;
    }
    if (waiting != younger.end() && waiting->second.empty()) {
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
  llvm::DenseMap<Handle, std::unique_ptr<Record>> oldest;
  /// All others, which hardly ever exist: a runtime that gives out a handle
  /// again has told of the end of its first object.
  llvm::DenseMap<Handle, std::vector<std::unique_ptr<Record>>> younger;
  std::size_t erased = 0;        ///< at most so many, since oldest grew
  std::size_t erasedYounger = 0; ///< the same for younger
  std::size_t count = 0;
};

} // namespace corvane
