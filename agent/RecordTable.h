// Records by the OpenCL handle that they describe.

#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace corvane {

/// Owns records and finds them by handle. Behaves as a list that is searched
/// from the front: of two records of one handle the older one answers, and
/// after its removal the next. Null records are counted and never found.
///
/// Not locked; the owner of the table says what guards it. The record type need
/// only be complete where records are added or removed.
template <typename Handle, typename Record> class RecordTable {
public:
  /// The oldest record of \p handle, or null.
  Record *find(Handle handle) const {
    const auto found = entries.find(handle);
    return found == entries.end() ? nullptr : found->second.oldest.get();
  }

  /// Whether \p handle has exactly one record.
  bool isUnique(Handle handle) const {
    const auto found = entries.find(handle);
    return found != entries.end() && found->second.younger.empty();
  }

  /// Adds \p record as the youngest and returns it. An exception leaves the
  /// table as it was, and the record with the caller.
  Record *append(Handle handle, std::unique_ptr<Record> &&record) {
    Record *added = record.get();
    if (record) {
      Entry &entry = entries[handle];
      if (!entry.oldest)
        entry.oldest = std::move(record);
      else
        entry.younger.push_back(std::move(record));
    }
    ++count;
    return added;
  }

  /// Takes the oldest record of \p handle out; null when there is none.
  std::unique_ptr<Record> remove(Handle handle) {
    const auto found = entries.find(handle);
    if (found == entries.end())
      return nullptr;
    Entry &entry = found->second;
    std::unique_ptr<Record> record = std::move(entry.oldest);
    --count;
    if (entry.younger.empty()) {
      entries.erase(found);
      return record;
    }
    entry.oldest = std::move(entry.younger.front());
    entry.younger.erase(entry.younger.begin());
    return record;
  }

  /// How many records there are, null ones included.
  std::size_t size() const { return count; }

private:
  struct Entry {
    std::unique_ptr<Record> oldest; ///< never null outside of append
    /// Nearly always empty: before a runtime gives out a handle again, it has
    /// reported the end of the handle's first object.
    std::vector<std::unique_ptr<Record>> younger;
  };

  std::unordered_map<Handle, Entry> entries;
  std::size_t count = 0;
};

} // namespace corvane
