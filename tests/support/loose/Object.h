// The base of all objects of the loose runtime: two counts, and the shared
// state.

#pragma once

#include "tests/support/loose/SharedState.h"

#include <CL/cl.h>

#include <atomic>
#include <utility>

namespace corvane::test::loose {

/// Exists as long as the application or a command needs it. Counting does not
/// order threads, except that the end comes after every other use.
class Object {
public:
  Object(SharedState &ofRuntime, Kind ofKind)
      : shared(ofRuntime), kind(ofKind) {
    shared.count(kind, 1);
  }
  Object(const Object &) = delete;
  Object &operator=(const Object &) = delete;

  /// The application's references; they hold the object together.
  void retain() { references.fetch_add(1, std::memory_order_relaxed); }
  void release();
  cl_uint referenceCount() const {
    return references.load(std::memory_order_relaxed);
  }

  void hold() { holders.fetch_add(1, std::memory_order_relaxed); }
  void letGo();

  SharedState &shared;

protected:
  virtual ~Object() = default;

  /// Called at the end, while the handle is still the object's.
  virtual void end() {}

private:
  const Kind kind;
  std::atomic<unsigned> references{1};
  std::atomic<unsigned> holders{1};
};

/// Holds an object, or nothing.
template <typename Type> class Ref {
public:
  Ref() = default;
  explicit Ref(Type *held) : object(held) {
    if (object)
      object->hold();
  }
  Ref(const Ref &other) : Ref(other.object) {}
  Ref(Ref &&other) noexcept : object(std::exchange(other.object, nullptr)) {}
  Ref &operator=(Ref other) noexcept {
    std::swap(object, other.object);
    return *this;
  }
  ~Ref() {
    if (object)
      object->letGo();
  }

  Type *operator->() const { return object; }
  Type &operator*() const { return *object; }
  explicit operator bool() const { return object != nullptr; }

private:
  Type *object = nullptr;
};

} // namespace corvane::test::loose
