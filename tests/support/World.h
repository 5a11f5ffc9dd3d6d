// The state of the scripted runtime, which its entries share.

#pragma once

#include "tests/support/Answers.h"
#include "tests/support/Commands.h"
#include "tests/support/Objects.h"
#include "tests/support/Transcript.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvane::test {

/// Sizes that the runtime claims, in place of the true ones.
struct Lies {
  std::optional<cl_uint> deviceCount;      ///< of every program
  std::optional<std::size_t> buildLogSize; ///< of every log
  std::optional<cl_uint> kernelCount;      ///< of every program
};

/// Start and end of a run on the device, in nanoseconds.
using Times = std::pair<cl_ulong, cl_ulong>;

/// Everything that the entries share. One at a time, because an entry finds its
/// runtime by a global variable.
class World {
public:
  World();
  ~World();
  World(const World &) = delete;
  World &operator=(const World &) = delete;

  /// The world of the runtime that exists now. Without one a call to \p entry
  /// stops the process.
  static World &current(const char *entry);

  /// Records a call and returns its scripted failure, if any.
  std::optional<cl_int> begin(const std::string &entry,
                              const std::vector<std::string> &arguments) {
    transcript.add(entry, arguments);
    return failureOf(entry);
  }

  /// Does what the test wants done at a call. Returns the failure scripted for
  /// it; none: the call works.
  std::optional<cl_int> failureOf(const std::string &entry);

  /// Names of objects, for the transcript.
  template <typename Handle> std::string say(Handle handle) {
    std::lock_guard<std::recursive_mutex> guard(lock);
    return objects.nameOf(handle);
  }
  template <typename Handle>
  std::string sayAll(cl_uint count, const Handle *handles);

  template <typename Handle>
  cl_int retain(const char *entry, Handle handle, cl_int invalid);
  template <typename Handle>
  cl_int release(const char *entry, Handle handle, cl_int invalid);

  /// A device by its number, from 1; and the number of a device, 0 if unknown.
  cl_device_id device(unsigned number);
  unsigned numberOf(cl_device_id device) const;

  /// Ends \p object if no reference to it is left.
  void settle(const Object &object);

  /// The times of the next run of the kernel called \p name.
  Times nextTimes(const std::string &name);

  /// Guards what follows. Not held while code of a test or the agent runs.
  std::recursive_mutex lock;
  Objects objects;
  std::vector<cl_device_id> devices;
  Lies lies;
  std::map<std::string, std::deque<Times>> times;  ///< the last one is repeated
  std::map<std::string, cl_int> endStatus;         ///< of runs, by kernel
  std::map<std::string, std::function<void()>> on; ///< runs before an entry
  std::deque<std::shared_ptr<Program>> nextLinked;
  std::deque<std::shared_ptr<Program>> nextFromSource;
  bool unsetArgumentsAllowed = false;
  std::string driverVersion = "1.0"; ///< of every device

  Answers answers;       ///< has its own lock
  Transcript transcript; ///< has its own lock
  Commands commands;
};

template <typename Handle>
std::string World::sayAll(cl_uint count, const Handle *handles) {
  if (!handles)
    return count == 0 ? "[]" : "null for " + std::to_string(count);
  std::string words;
  for (cl_uint i = 0; i != count; ++i)
    words += (i == 0 ? "" : ", ") + say(handles[i]);
  return "[" + words + "]";
}

template <typename Handle>
cl_int World::retain(const char *entry, Handle handle, cl_int invalid) {
  if (const auto failure = begin(entry, {say(handle)}))
    return *failure;
  std::lock_guard<std::recursive_mutex> guard(lock);
  const auto object = objects.find(handle);
  if (!object)
    return invalid;
  ++object->references;
  return CL_SUCCESS;
}

template <typename Handle>
cl_int World::release(const char *entry, Handle handle, cl_int invalid) {
  if (const auto failure = begin(entry, {say(handle)}))
    return *failure;
  std::shared_ptr<Object> object;
  {
    std::lock_guard<std::recursive_mutex> guard(lock);
    object = objects.find(handle);
    if (!object)
      return invalid;
    --object->references;
  }
  settle(*object);
  return CL_SUCCESS;
}

} // namespace corvane::test
