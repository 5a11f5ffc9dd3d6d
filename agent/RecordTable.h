// Records by the OpenCL handle that they describe, found in constant time.

#pragma once

#include "llvm/ADT/DenseMap.h"
#include "llvm/ADT/SmallVector.h"

#include <cstddef>
#include <memory>
#include <utility>

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
    return found == records.end() ? nullptr : found->second.front().get();
  }

  /// Whether \p handle has exactly one record.
  bool isUnique(Handle handle) const {
    if (!canBeKey(handle))
      return false;
    auto found = records.find(handle);
    return found != records.end() && found->second.size() == 1;
  }

  /// Adds \p record behind all others and returns it.
  Record *append(Handle handle, std::unique_ptr<Record> record) {
    ++count;
    if (!record || !canBeKey(handle))
      return nullptr;
    auto &sameHandle = records[handle];
    sameHandle.push_back(std::move(record));
    return sameHandle.back().get();
  }

  /// Takes the oldest record of \p handle out; null when there is none.
  std::unique_ptr<Record> remove(Handle handle) {
    if (!canBeKey(handle))
      return nullptr;
    auto found = records.find(handle);
    if (found == records.end())
      return nullptr;
    auto &sameHandle = found->second;
    std::unique_ptr<Record> record = std::move(sameHandle.front());
    sameHandle.erase(sameHandle.begin());
    if (sameHandle.empty())
      records.erase(found);
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
  llvm::DenseMap<Handle, llvm::SmallVector<std::unique_ptr<Record>, 1>> records;
  std::size_t count = 0;
};

} // namespace corvane
