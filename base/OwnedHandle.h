// A reference to an OpenCL object that is given back with its owner.

#pragma once

#include <utility>

namespace corvane {

/// Holds one reference to an object of the runtime's. \p Calls says how to take
/// and to give back a reference: static functions retain(Handle) and
/// release(Handle), either of which may be called with the runtime's table of
/// the moment.
template <typename Handle, typename Calls> class OwnedHandle {
public:
  OwnedHandle() = default;
  /// Takes over the caller's reference; \p object may be null.
  explicit OwnedHandle(Handle object) : handle(object) {}
  OwnedHandle(OwnedHandle &&other) noexcept : handle(other.claim()) {}
  OwnedHandle &operator=(OwnedHandle &&other) noexcept {
    OwnedHandle moved(std::move(other));
    std::swap(handle, moved.handle);
    return *this;
  }
  ~OwnedHandle() { reset(); }

  /// Takes a reference besides the caller's; owns nothing if the runtime
  /// refuses.
  static OwnedHandle retain(Handle object) {
    return OwnedHandle(object && Calls::retain(object) ? object : nullptr);
  }

  Handle get() const { return handle; }
  explicit operator bool() const { return handle != nullptr; }

  /// Leaves the reference to the caller.
  Handle claim() { return std::exchange(handle, nullptr); }
  /// Gives the reference back now.
  void reset() {
    if (Handle held = claim())
      Calls::release(held);
  }

private:
  Handle handle = nullptr;
};

} // namespace corvane
