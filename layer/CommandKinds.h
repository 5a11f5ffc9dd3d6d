// What the arguments of calls that enqueue say of their commands.

#pragma once

#include "layer/CommandsInFlight.h"
#include "layer/KernelMemory.h"

#include <tuple>

namespace corvane::layer {

/// What the arguments of a call, the queue first, say of its command.
struct Description {
  CommandRequest request;
  bool blocking = false;
};

/// Works on the memory object that follows the queue.
struct OneObject {
  template <typename Args> static void describe(const Args &a, Description &d) {
    d.request.memory.add(std::get<1>(a));
  }
};

/// The same, and an argument says whether the call waits for its end.
struct Transfer {
  template <typename Args> static void describe(const Args &a, Description &d) {
    OneObject::describe(a, d);
    d.blocking = std::get<2>(a) != CL_FALSE;
  }
};

struct TwoObjects {
  template <typename Args> static void describe(const Args &a, Description &d) {
    d.request.memory.add(std::get<1>(a));
    d.request.memory.add(std::get<2>(a));
  }
};

/// A number of memory objects and their list follow the queue.
struct ObjectList {
  template <typename Args> static void describe(const Args &a, Description &d) {
    for (cl_uint i = 0; std::get<2>(a) && i != std::get<1>(a); ++i)
      d.request.memory.add(std::get<2>(a)[i]);
  }
};

struct NativeKernel {
  template <typename Args> static void describe(const Args &a, Description &d) {
    for (cl_uint i = 0; std::get<5>(a) && i != std::get<4>(a); ++i)
      d.request.memory.add(std::get<5>(a)[i]);
    d.request.runsApplicationsCode = true;
  }
};

struct Task {
  template <typename Args> static void describe(const Args &a, Description &d) {
    d.request.memory = memoryOf(std::get<1>(a));
  }
};

/// Works on shared virtual memory, of which buffers may be made, too.
struct Shared {
  template <typename Args> static void describe(const Args &, Description &d) {
    d.request.memory.anything = true;
  }
};

struct SharedTransfer {
  template <typename Args> static void describe(const Args &a, Description &d) {
    Shared::describe(a, d);
    d.blocking = std::get<1>(a) != CL_FALSE;
  }
};

/// Calls a function of the application's.
struct SharedFree {
  template <typename Args> static void describe(const Args &a, Description &d) {
    Shared::describe(a, d);
    d.request.runsApplicationsCode = true;
  }
};

template <typename Args> constexpr cl_uint waitCountOf(const Args &a) {
  return std::get<std::tuple_size_v<Args> - 3>(a);
}

/// Comes after everything if it has no wait list.
struct Marker {
  template <typename Args> static void describe(const Args &a, Description &d) {
    d.request.waitsForQueue = waitCountOf(a) == 0;
  }
};

struct Barrier {
  template <typename Args> static void describe(const Args &a, Description &d) {
    Marker::describe(a, d);
    d.request.holdsQueue = true;
  }
};

} // namespace corvane::layer
