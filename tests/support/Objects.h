// All objects of a scripted runtime by their handles.

#pragma once

#include "tests/support/FakeObjects.h"

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace corvane::test {

/// Gives handles out, finds objects and records who uses one after its end. Not
/// locked.
class Objects {
public:
  /// Makes \p object known. It is called \p name and the smallest number that
  /// no living object of that name has; the number 1 of a kernel is left out.
  template <typename Handle>
  Handle add(const std::shared_ptr<typename ObjectOf<Handle>::Type> &object,
             const std::string &name = {}) {
    return static_cast<Handle>(addObject(object, ObjectOf<Handle>::kind, name));
  }

  /// The object of \p handle that the application holds. Null for nonsense, and
  /// for an object that it has released; the latter counts as a misuse.
  template <typename Handle>
  std::shared_ptr<typename ObjectOf<Handle>::Type> find(Handle handle) {
    return std::dynamic_pointer_cast<typename ObjectOf<Handle>::Type>(
        findObject(handle, false));
  }

  /// The same, but an object that only the runtime still needs is found too: a
  /// callback may ask about its event.
  template <typename Handle>
  std::shared_ptr<typename ObjectOf<Handle>::Type> findInUse(Handle handle) {
    return std::dynamic_pointer_cast<typename ObjectOf<Handle>::Type>(
        findObject(handle, true));
  }

  /// "kernel blur", "null", "kernel ?" or "kernel blur (gone)".
  template <typename Handle> std::string nameOf(Handle handle) const {
    return nameOfObject(handle, ObjectOf<Handle>::kind);
  }

  /// Ends \p object if no reference to it is left, and returns whether it did.
  bool endIfUnused(const Object &object);

  /// The names of the living objects of one kind, in order of creation.
  std::vector<std::string> alive(const std::string &kind) const;

  /// "event 1 used after its end", one line a use.
  std::vector<std::string> misuses;

  /// Whether a new object may get the handle of one that is gone.
  bool recycleHandles = false;

private:
  void *addObject(const std::shared_ptr<Object> &object,
                  const std::string &kind, const std::string &name);
  std::shared_ptr<Object> findObject(void *handle, bool inUseIsEnough);
  std::string nameOfObject(void *handle, const std::string &kind) const;
  std::string freeName(const std::string &kind, const std::string &name);
  void *freeHandle(const std::string &kind);

  std::deque<std::max_align_t> places; ///< their addresses are the handles
  std::vector<std::shared_ptr<Object>> living;
  std::map<void *, std::shared_ptr<Object>> byHandle;
  std::map<void *, std::string> gone;
  std::map<std::string, unsigned> lastNumber; ///< of the kinds that count up
};

} // namespace corvane::test
