// The loose runtime's objects.

#pragma once

#include "tests/support/loose/Object.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace corvane::test::loose {

/// A kernel as its program declares it. Its arguments are buffers, then a
/// number of 4 bytes; some variants have 16 hidden bytes more.
struct KernelType {
  const char *name;
  const char *base;
  const char *version; ///< "baseline": the kernel itself
  unsigned buffers = 1;
  unsigned factor =
      1; ///< how many work-items are one, along the first dimension
  bool shrinksLocal = false; ///< whether work-groups get smaller, too
  bool hidden = false;

  bool isVariant() const { return factor != 1; }
  cl_uint arguments() const { return buffers + 1 + (hidden ? 1 : 0); }
};

struct Source {
  const char *text; ///< empty: the program was linked
  std::vector<KernelType> kernels;
  const char *log; ///< of every build
};
/// The source of a name: "main", "own", "spilling", "linked".
const Source &sourceCalled(const std::string &name);

struct Context : Object {
  explicit Context(SharedState &ofRuntime) : Object(ofRuntime, Kind::Context) {}
};

struct Queue : Object {
  Queue(Context &of, cl_command_queue_properties with)
      : Object(of.shared, Kind::Queue), context(&of), properties(with) {}
  const Ref<Context> context;
  const cl_command_queue_properties properties;
};

struct Program : Object {
  Program(SharedState &ofRuntime, const Source &of)
      : Object(ofRuntime, Kind::Program), source(of) {}
  const Source &source;
};

struct Argument {
  std::size_t size = 0; ///< 0: never set
  std::array<unsigned char, 16> bytes{};
};

struct Kernel : Object {
  Kernel(Program &of, const KernelType &declared)
      : Object(of.shared, Kind::Kernel), program(&of), type(declared) {}
  const Ref<Program> program;
  const KernelType &type;
  std::array<Argument, 4> arguments; ///< without a lock, as in real runtimes
};

using Words = std::vector<std::uint32_t>;

/// A buffer that knows the contents it must have after the application's own
/// kernels.
struct Buffer : Object {
  Buffer(SharedState &ofRuntime, std::size_t size)
      : Object(ofRuntime, Kind::Buffer), words(size / 4), truth(size / 4) {}
  Words words;
  Words truth;
  std::vector<std::pair<void(CL_CALLBACK *)(cl_mem, void *), void *>>
      destructors;

  void expectTruth() {
    if (words != truth)
      shared.reportMistake("a buffer was spoiled");
  }

private:
  void end() override;
};

using EventCallback = void(CL_CALLBACK *)(cl_event, cl_int, void *);

struct Event : Object {
  explicit Event(SharedState &ofRuntime) : Object(ofRuntime, Kind::Event) {}

  bool isOver() const {
    return status.load(std::memory_order_acquire) == CL_COMPLETE;
  }
  void complete();
  void whenComplete(EventCallback callback, void *userData);

  std::atomic<cl_int> status{CL_QUEUED};
  cl_ulong started = 0; ///< nanoseconds
  cl_ulong ended = 0;
  std::string row;      ///< of a run, if it is asked for
  bool isUsers = false; ///< whether the application completes it

private:
  struct Waiting;
  /// Null, a list, or, once the event is over, the mark of a closed list.
  std::atomic<Waiting *> waiting{nullptr};
  void call(EventCallback callback, void *userData);
};

template <typename Handle> struct ObjectOf;
#define OBJECT(HANDLE, TYPE)                                                   \
  template <> struct ObjectOf<HANDLE> { using Type = TYPE; };
OBJECT(cl_context, Context)
OBJECT(cl_command_queue, Queue)
OBJECT(cl_program, Program)
OBJECT(cl_kernel, Kernel)
OBJECT(cl_mem, Buffer)
OBJECT(cl_event, Event)
#undef OBJECT

// A handle points into its object, because the start of a page may look like a
// size: some processes have all their memory at small addresses, and the agent
// may get a buffer that was created before it was loaded.
inline constexpr std::size_t handleOffset = 8;

template <typename Handle> auto *objectOf(Handle handle) {
  return reinterpret_cast<typename ObjectOf<Handle>::Type *>(
      reinterpret_cast<char *>(handle) - handleOffset);
}
template <typename Handle>
Handle handleOf(typename ObjectOf<Handle>::Type *object) {
  return reinterpret_cast<Handle>(reinterpret_cast<char *>(object) +
                                  handleOffset);
}

} // namespace corvane::test::loose
