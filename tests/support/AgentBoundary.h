// Records the calls into the agent and out of it, and marks whose code runs.

#pragma once

#include "tests/support/FakeRuntime.h"
#include "tests/support/Side.h"

#include <CL/cl.h>

#include <list>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace corvane::test {

/// A call to the runtime and its status. That of an entry that returns a handle
/// is its error code.
struct Answered {
  std::string entry;
  cl_int status;
};

/// Wraps both tables, the one that the application calls through and the one
/// that the agent calls through, so that each thread knows whose code it runs
/// (see Side.h). One at a time.
///
/// Make it before the load, and load and unload through it.
class AgentBoundary {
public:
  explicit AgentBoundary(FakeRuntime &runtime);
  ~AgentBoundary();
  AgentBoundary(const AgentBoundary &) = delete;
  AgentBoundary &operator=(const AgentBoundary &) = delete;

  cl_int load();
  void unload();

  /// The table that the application calls through since the last load.
  const DispatchTable &table() const { return entrance; }

  /// The runtime's answers since forgetAnswers(), in the order of the calls.
  std::vector<Answered> answers() const;
  void forgetAnswers();

  /// Every way in which an entry has failed so far.
  std::set<std::pair<std::string, cl_int>> failures() const;

  /// Records a call and returns its index, for its answer.
  std::size_t recordCall(const char *entry);
  void recordAnswer(std::size_t place, cl_int status);

  /// Keeps the arguments of a callback until the end of this object.
  struct Callback {
    void(CL_CALLBACK *event)(cl_event, cl_int, void *);
    void(CL_CALLBACK *destructor)(cl_mem, void *);
    void *userData;
  };
  Callback *keep(const Callback &callback);

private:
  FakeRuntime &runtime;
  DispatchTable entrance;
  mutable std::mutex lock;
  std::vector<Answered> noted;
  std::set<std::pair<std::string, cl_int>> failed;
  std::list<Callback> callbacks;
};

} // namespace corvane::test
