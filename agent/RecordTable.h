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
    auto found = records.find(handle);
    return found == records.end() ? nullptr : found->second.oldest.get();
  }

  /// Whether \p handle has exactly one record.
  bool isUnique(Handle handle) const {
    if (!canBeKey(handle))
      return false;
    auto found = records.find(handle);
    return found != records.end() && found->second.younger.empty();
  }

  /// Makes sure that a record of \p handle can be appended without memory. An
  /// exception leaves the table as it was.
  void makeRoom(Handle handle) {
    if (!canBeKey(handle))
      return;
    if (makeRoomForOne(records, erased))
      erased = 0;
    const auto found = records.find(handle);
    if (found != records.end())
      found->second.younger.reserve(found->second.younger.size() + 1);
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
    const auto [sameHandle, isNew] = records.try_emplace(handle);
    if (isNew)
      sameHandle->second.oldest = std::move(record);
    else
      sameHandle->second.younger.push_back(std::move(record));
    ++count;
    return added;
  }

  /// Takes the oldest record of \p handle out; null when there is none.
  std::unique_ptr<Record> remove(Handle handle) {
    if (!canBeKey(handle))
      return nullptr;
    auto found = records.find(handle);
    if (found == records.end())
      return nullptr;
    auto &[oldest, younger] = found->second;
    std::unique_ptr<Record> record = std::move(oldest);
    if (younger.empty()) {
      records.erase(found);
      ++erased;
    } else {
      oldest = std::move(younger.front());
      younger.erase(younger.begin());
    }
    --count;
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
  struct SameHandle {
    std::unique_ptr<Record> oldest; ///< never null
    std::vector<std::unique_ptr<Record>> younger;
  };
  llvm::DenseMap<Handle, SameHandle> records;
  std::size_t erased = 0; ///< at most so many, since the map grew
  std::size_t count = 0;
};

} // namespace corvane
