// Makes hooks for the calls that enqueue a command or create a memory object.

#pragma once

#include "layer/Enqueueing.h"
#include "layer/KernelMemory.h"

#include <tuple>
#include <type_traits>
#include <utility>

namespace corvane::layer::tuning {

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

/// The type of an entry of the dispatch tables.
template <auto Entry>
using EntryType =
    std::remove_reference_t<decltype(std::declval<cl_icd_dispatch &>().*Entry)>;

/// A call whose last arguments are a wait list and an event, of a command that
/// \p Kind describes.
template <auto Entry, typename Kind, typename Function = EntryType<Entry>>
struct CommandHook;
template <auto Entry, typename Kind, typename... Args>
struct CommandHook<Entry, Kind, cl_int(CL_API_CALL *)(Args...)> {
  static cl_int CL_API_CALL call(Args... args) {
    constexpr std::size_t count = sizeof...(Args);
    std::tuple<Args...> all(args...);
    Description description;
    description.request.queue = std::get<0>(all);
    Kind::describe(all, description);
    Enqueueing enqueueing(std::move(description.request),
                          {std::get<count - 3>(all), std::get<count - 2>(all),
                           std::get<count - 1>(all)},
                          description.blocking);
    std::get<count - 3>(all) = enqueueing.arguments().waitCount;
    std::get<count - 2>(all) = enqueueing.arguments().waitList;
    std::get<count - 1>(all) = enqueueing.arguments().event;
    return enqueueing.returned(std::apply(upperHalf().*Entry, all));
  }
};

/// A call that maps: an error code follows the event.
template <auto Entry, typename Function = EntryType<Entry>> struct MapHook;
template <auto Entry, typename... Args>
struct MapHook<Entry, void *(CL_API_CALL *)(Args...)> {
  static void *CL_API_CALL call(Args... args) {
    constexpr std::size_t count = sizeof...(Args);
    std::tuple<Args...> all(args...);
    Description description;
    description.request.queue = std::get<0>(all);
    Transfer::describe(all, description);
    Enqueueing enqueueing(std::move(description.request),
                          {std::get<count - 4>(all), std::get<count - 3>(all),
                           std::get<count - 2>(all)},
                          description.blocking);
    cl_int status = CL_SUCCESS;
    cl_int *wanted = std::get<count - 1>(all);
    std::get<count - 4>(all) = enqueueing.arguments().waitCount;
    std::get<count - 3>(all) = enqueueing.arguments().waitList;
    std::get<count - 2>(all) = enqueueing.arguments().event;
    std::get<count - 1>(all) = &status;
    void *region = std::apply(upperHalf().*Entry, all);
    if (status == CL_SUCCESS)
      rememberMap(std::get<1>(all));
    (void)enqueueing.returned(status);
    if (wanted)
      *wanted = status;
    return region;
  }
};

/// A call that creates a memory object, whatever its arguments are.
template <auto Entry, bool mayBePart, typename Function = EntryType<Entry>>
struct CreationHook;
template <auto Entry, bool mayBePart, typename... Args>
struct CreationHook<Entry, mayBePart, cl_mem(CL_API_CALL *)(Args...)> {
  static cl_mem CL_API_CALL call(Args... args) {
    cl_mem object = (upperHalf().*Entry)(args...);
    if (object)
      enterMemoryObject(object, mayBePart);
    return object;
  }
};

} // namespace corvane::layer::tuning
