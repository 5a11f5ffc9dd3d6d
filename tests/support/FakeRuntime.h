// A scripted OpenCL runtime with an agent interface.

#pragma once

#include "tests/support/EnvGuard.h"
#include "tests/support/FakeAgent.h"
#include "tests/support/ProgramScript.h"
#include "tests/support/World.h"

#include <CL/cl.h>

#include <cstddef>
#include <cstring>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane::test {

/// The runtime of one test; there is one at a time. README.md shows how to use
/// it.
///
/// A use of an object after its end, or a release too many, fails the test,
/// unless the test asks for misuses() itself. While the runtime exists, the
/// agent's environment variables are undefined until the test defines them. Any
/// thread may call its functions.
class FakeRuntime {
public:
  FakeRuntime();
  ~FakeRuntime();
  FakeRuntime(const FakeRuntime &) = delete;
  FakeRuntime &operator=(const FakeRuntime &) = delete;

  /// The agent's side: the object for the exported functions, the table that
  /// they are given (change it before the load) and what they set.
  FakeAgent &agent() { return agentObject; }
  DispatchTable &ownTable() { return agentObject.current; }

  // --- objects, made without the agent's knowledge ---

  cl_device_id device(unsigned number = 1) { return world.device(number); }
  cl_context context();     ///< always the same
  cl_command_queue queue(); ///< always the same, with profiling
  cl_mem addBuffer(std::size_t size, cl_mem_flags flags = CL_MEM_READ_WRITE);
  cl_event addEvent(); ///< not over until endEvent
  ProgramScript addProgram();
  ProgramScript linkMakes();   ///< what the next link makes; first come first
  ProgramScript sourceMakes(); ///< what the next creation from source makes

  /// The bytes of a buffer, and other bytes for it.
  std::vector<unsigned char> bytes(cl_mem buffer);
  void setBytes(cl_mem buffer, const std::vector<unsigned char> &bytes);
  /// The bytes of a buffer, which stay readable after its end. The same object
  /// at every call.
  std::shared_ptr<const std::vector<unsigned char>> look(cl_mem buffer);

  /// Objects that the application still holds: "event", "kernel", "program",
  /// "buffer", ...
  std::vector<std::string> alive(const std::string &kind);

  /// Uses of objects after their end, one text each; forgets them.
  std::vector<std::string> misuses();

  /// From now on new objects get the handles of objects that are gone.
  void recycleHandles();

  // --- what was called ---

  /// All calls in words, or those to the entries named; see README.md.
  std::vector<std::string>
  transcript(const std::vector<std::string> &names = {}) const;
  void forgetTranscript();

  // --- what goes wrong ---

  /// Calls to \p name fail with \p status and have no other effect: all from
  /// now on, or only the \p nth from now on. CL_SUCCESS ends that. The agent
  /// operations are called "GetICDDispatchTable" and "SetICDDispatchTable".
  void answer(const std::string &name, cl_int status,
              std::optional<std::size_t> nth = std::nullopt);

  /// The \p nth call from now on fails, whichever it is.
  void answerAny(std::size_t nth, cl_int status);
  /// Which call that was; empty before it.
  std::string failedOfAny() const { return world.answers.lastOfAny(); }
  std::size_t callCount() const; ///< since the runtime was made

  /// False sizes that the runtime claims.
  Lies &lies() { return world.lies; }

  /// Launches work although arguments were never set.
  void allowUnsetArguments();

  /// \p action runs at the start of every call to \p name, on its thread.
  void whenCalled(const std::string &name, std::function<void()> action);

  // --- time ---

  /// Device times in nanoseconds of the runs of a kernel, in order; the last
  /// is repeated. A kernel without them takes 1000.
  void takes(const std::string &kernel, const std::vector<cl_ulong> &durations);

  /// The same with the two counters themselves.
  void counters(const std::string &kernel, const std::vector<Times> &times);

  /// Runs of the kernel end with this status instead of CL_COMPLETE.
  void endsWith(const std::string &kernel, cl_int status);

  /// From now on commands wait until the test runs them; false runs them all.
  void late(bool late = true);
  /// Runs the oldest or youngest command whose wait list is over, here and now.
  bool runFirst() { return world.commands.runFirst(); }
  bool runLast() { return world.commands.runLast(); }
  void runAll();                            ///< oldest first
  std::vector<std::string> waiting() const; ///< in words, as in the transcript

  /// From now on callbacks wait until the test fires them.
  void holdCallbacks(bool hold = true);
  /// Fires the callbacks held, here, and returns how many they were.
  std::size_t fireCallbacks();

  void endEvent(cl_event event, cl_int status = CL_COMPLETE);

private:
  std::list<EnvGuard> environment;
  World world;
  FakeAgent agentObject;
  cl_context theContext = nullptr;
  cl_command_queue theQueue = nullptr;
};

} // namespace corvane::test
