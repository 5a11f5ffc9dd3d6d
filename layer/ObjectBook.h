// What the layer remembers of the application's objects of one kind.

#pragma once

#include "base/ForkedChild.h"

#include <CL/cl.h>

#include <mutex>
#include <unordered_map>
#include <utility>

namespace corvane::layer {

/// What a release means to the book.
enum class Release {
  Unknown, ///< the object is not in the book
  Alive,   ///< the application holds more references
  Last,    ///< the application's last reference goes; so did the notes
};

/// Notes on objects by handle, with the references that the application holds.
/// A runtime's own count would not do: it holds references itself while
/// commands and other objects use one, and is free to do so for any length of
/// time.
///
/// Any thread may call; the lock is not held across calls of others. In a
/// forked child, where it may be locked for ever, nothing is known of any
/// object: what the agent passes on there comes here.
template <typename Handle, typename Notes> class ObjectBook {
public:
  /// Opens the book on a new object. Notes on an object that is gone and had
  /// the same handle are dropped; returns whether there were any.
  bool open(Handle object, Notes notes, cl_uint references = 1) {
    if (inForkedChild())
      return false;
    std::lock_guard<std::mutex> guard(lock);
    const auto result =
        pages.insert_or_assign(object, Page{references, std::move(notes)});
    return !result.second;
  }

  bool has(Handle object) const {
    if (inForkedChild())
      return false;
    std::lock_guard<std::mutex> guard(lock);
    return pages.count(object) != 0;
  }

  /// How many the application holds; 0 for an object that is not in the book.
  cl_uint references(Handle object) const {
    if (inForkedChild())
      return 0;
    std::lock_guard<std::mutex> guard(lock);
    const auto page = pages.find(object);
    return page == pages.end() ? 0 : page->second.references;
  }

  /// A copy of the notes; empty ones for an object that is not in the book.
  Notes read(Handle object) const {
    if (inForkedChild())
      return Notes();
    std::lock_guard<std::mutex> guard(lock);
    const auto page = pages.find(object);
    return page == pages.end() ? Notes() : page->second.notes;
  }

  /// Has \p edit change the notes on an object that is in the book.
  template <typename Edit> void edit(Handle object, Edit edit) {
    if (inForkedChild())
      return;
    std::lock_guard<std::mutex> guard(lock);
    const auto page = pages.find(object);
    if (page != pages.end())
      edit(page->second.notes);
  }

  /// Strikes an object out if its notes are those that \p isMeant wants, and
  /// returns whether it did.
  template <typename IsMeant> bool close(Handle object, IsMeant isMeant) {
    if (inForkedChild())
      return false;
    std::lock_guard<std::mutex> guard(lock);
    const auto page = pages.find(object);
    if (page == pages.end() || !isMeant(page->second.notes))
      return false;
    pages.erase(page);
    return true;
  }

  void retain(Handle object) {
    if (inForkedChild())
      return;
    std::lock_guard<std::mutex> guard(lock);
    const auto page = pages.find(object);
    if (page != pages.end())
      ++page->second.references;
  }

  /// Call before the runtime releases: once the object is gone, its handle may
  /// already be another's.
  Release release(Handle object) {
    if (inForkedChild())
      return Release::Unknown;
    std::lock_guard<std::mutex> guard(lock);
    const auto page = pages.find(object);
    if (page == pages.end())
      return Release::Unknown;
    if (--page->second.references != 0)
      return Release::Alive;
    pages.erase(page);
    return Release::Last;
  }

private:
  struct Page {
    cl_uint references;
    Notes notes;
  };

  mutable std::mutex lock;
  std::unordered_map<Handle, Page> pages;
};

/// The one object of a type, which is never destroyed: programs release what
/// they have while the process ends, when our own objects would be gone.
template <typename Object> Object &everlasting() {
  static Object *const object = new Object;
  return *object;
}

} // namespace corvane::layer
