// Information about the application's objects of one kind, found by handle.

#pragma once

#include "base/ForkedChild.h"

#include <CL/cl.h>

#include <mutex>
#include <unordered_map>
#include <utility>

namespace corvane::layer {

/// What a release means to the table.
enum class Release {
  Unknown, ///< the object is not in the table
  Alive,   ///< the application holds more references
  Last,    ///< the application's last reference goes; so did the entry
};

/// One entry for each object, with the references that the application holds.
/// The runtime's own count would not do: a runtime holds references itself
/// while commands and other objects use an object, and may do so for any length
/// of time.
///
/// Any thread may call; the lock is not held across calls to OpenCL, nor while
/// an entry is destroyed. In a
/// forked child, where a thread that is gone may have locked it, the table is
/// taken for empty: the agent passes the calls of a child on to the layer.
template <typename Handle, typename Info> class ObjectTable {
public:
  /// Adds a new object. The entry of an object that is gone and had the same
  /// handle is replaced; returns whether there was one.
  bool insert(Handle object, Info info, cl_uint references = 1) {
    if (inForkedChild())
      return false;
    Entry added{references, std::move(info)};
    std::lock_guard<std::mutex> guard(lock);
    const auto [entry, isNew] = entries.try_emplace(object);
    std::swap(entry->second, added); // the old one goes when the lock is free
    return !isNew;
  }

  bool has(Handle object) const {
    if (inForkedChild())
      return false;
    std::lock_guard<std::mutex> guard(lock);
    return entries.count(object) != 0;
  }

  /// How many the application holds; 0 for an object that is not in the table.
  cl_uint references(Handle object) const {
    if (inForkedChild())
      return 0;
    std::lock_guard<std::mutex> guard(lock);
    const auto entry = entries.find(object);
    return entry == entries.end() ? 0 : entry->second.references;
  }

  /// A copy of the information; an empty one for an object that is not in the
  /// table.
  Info read(Handle object) const {
    if (inForkedChild())
      return Info();
    std::lock_guard<std::mutex> guard(lock);
    const auto entry = entries.find(object);
    return entry == entries.end() ? Info() : entry->second.info;
  }

  /// What \p look says of the information, or of an empty one for an object
  /// that is not in the table.
  template <typename Look> auto look(Handle object, Look look) const {
    if (inForkedChild())
      return look(Info());
    std::lock_guard<std::mutex> guard(lock);
    const auto entry = entries.find(object);
    return entry == entries.end() ? look(Info()) : look(entry->second.info);
  }

  /// Has \p edit change the information about an object that is in the table.
  template <typename Edit> void edit(Handle object, Edit edit) {
    if (inForkedChild())
      return;
    std::lock_guard<std::mutex> guard(lock);
    const auto entry = entries.find(object);
    if (entry != entries.end())
      edit(entry->second.info);
  }

  /// Removes the entry of an object if \p isMeant says so of its information,
  /// and returns whether it did.
  template <typename IsMeant> bool erase(Handle object, IsMeant isMeant) {
    if (inForkedChild())
      return false;
    Entry erased;
    std::lock_guard<std::mutex> guard(lock);
    const auto entry = entries.find(object);
    if (entry == entries.end() || !isMeant(entry->second.info))
      return false;
    std::swap(entry->second, erased);
    entries.erase(entry);
    return true;
  }

  void retain(Handle object) {
    if (inForkedChild())
      return;
    std::lock_guard<std::mutex> guard(lock);
    const auto entry = entries.find(object);
    if (entry != entries.end())
      ++entry->second.references;
  }

  /// Call before the runtime releases: once the object is gone, its handle may
  /// already be another's.
  Release release(Handle object) {
    if (inForkedChild())
      return Release::Unknown;
    Entry released;
    std::lock_guard<std::mutex> guard(lock);
    const auto entry = entries.find(object);
    if (entry == entries.end())
      return Release::Unknown;
    if (--entry->second.references != 0)
      return Release::Alive;
    std::swap(entry->second, released);
    entries.erase(entry);
    return Release::Last;
  }

private:
  struct Entry {
    cl_uint references = 0;
    Info info;
  };

  mutable std::mutex lock;
  std::unordered_map<Handle, Entry> entries;
};

/// The one object of a type, which is never destroyed: programs release what
/// they have while the process ends, when static objects are destroyed already.
template <typename Object> Object &neverDestroyed() {
  static Object *const object = new Object;
  return *object;
}

} // namespace corvane::layer
