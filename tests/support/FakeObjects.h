// The scripted runtime's objects: everything that has a handle and a count.

#pragma once

#include "tests/support/ProgramScript.h"

#include <CL/cl.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane::test {

struct Object {
  virtual ~Object() = default;

  std::string name; ///< as the transcript says it: "event 3", "kernel blur"
  void *handle = nullptr;  ///< null: the application never got one
  unsigned references = 1; ///< the application's
  unsigned uses = 0;       ///< commands and callbacks that still need it
};

struct Device : Object {};
struct Context : Object {};

struct Queue : Object {
  cl_command_queue_properties properties = 0;
  cl_context context = nullptr;
  cl_device_id device = nullptr;
};

struct Program : Object {
  cl_context context = nullptr; ///< null: the test made the program
  std::string source;           ///< empty: made of something else
  std::string options;          ///< of the latest build
  std::vector<Build> builds{Build{}};
  std::size_t buildCount = 0; ///< so far
  unsigned deviceCount = 1;

  /// The outcome of build \p number, from 1.
  const Build &build(std::size_t number) const;

  /// The outcome of the latest build; null before the first.
  const Build *latest() const;
};

struct Argument {
  std::size_t size = 0;
  bool hasValue = false; ///< false: local memory
  std::vector<unsigned char> value;
};

struct Kernel : Object {
  KernelScript script;
  std::shared_ptr<Program> program;
  std::vector<std::optional<Argument>> arguments; ///< none: never set
};

struct Buffer : Object {
  std::size_t size = 0;
  cl_mem_flags flags = 0;
  std::vector<unsigned char> bytes; ///< none if the buffer is too large
  std::vector<std::function<void()>> destructors;
};

struct Event : Object {
  bool isUsers = false; ///< no command's: the application ends it
  cl_int status = CL_SUBMITTED;
  bool profiled = false;
  cl_ulong start = 0; ///< nanoseconds
  cl_ulong end = 0;
  std::vector<std::function<void(cl_int)>> callbacks;

  /// Complete or ended by an error.
  bool over() const { return status <= CL_COMPLETE; }
};

/// The type of the object of a handle, and what the transcript calls it.
template <typename Handle> struct ObjectOf;
#define OBJECT(HANDLE, TYPE, KIND)                                             \
  template <> struct ObjectOf<HANDLE> {                                        \
    using Type = TYPE;                                                         \
    static constexpr const char *kind = KIND;                                  \
  };
OBJECT(cl_device_id, Device, "device")
OBJECT(cl_context, Context, "context")
OBJECT(cl_command_queue, Queue, "queue")
OBJECT(cl_program, Program, "program")
OBJECT(cl_kernel, Kernel, "kernel")
OBJECT(cl_mem, Buffer, "buffer")
OBJECT(cl_event, Event, "event")
#undef OBJECT

} // namespace corvane::test
