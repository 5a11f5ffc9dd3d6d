// An object of the runtime's that the application has not got yet.

#pragma once

#include <CL/cl.h>

#include <utility>

namespace corvane {

/// Gives the object back unless somebody claims it: behind an exception nobody
/// else knows of it.
template <typename Handle> class Unclaimed {
public:
  using Release = cl_int(CL_API_CALL *)(Handle);

  /// \p created may be null.
  Unclaimed(Handle created, Release releaseWith)
      : handle(created), release(releaseWith) {}
  ~Unclaimed() {
    if (handle)
      (void)release(handle);
  }
  Unclaimed(const Unclaimed &) = delete;
  Unclaimed &operator=(const Unclaimed &) = delete;

  Handle get() const { return handle; }
  Handle claim() { return std::exchange(handle, nullptr); }

private:
  Handle handle;
  Release release;
};

} // namespace corvane
