// The border around the agent; records everything that crosses it.

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

/// A call of the runtime's and what it answered. An entry that returns a handle
/// answers by its error code.
struct Answered {
  std::string entry;
  cl_int status;
};

/// Stands between application, agent and runtime, so that each thread knows
/// whose code it is in (see Side.h). One at a time.
///
/// Make it before the load, and load and unload through it.
class Frontier {
public:
  explicit Frontier(FakeRuntime &runtime);
  ~Frontier();
  Frontier(const Frontier &) = delete;
  Frontier &operator=(const Frontier &) = delete;

  cl_int load();
  void unload();

  /// What the application calls through, as the last load left it.
  const DispatchTable &table() const { return entrance; }

  /// The runtime's answers since they were forgotten, in the order in which it
  /// was called.
  std::vector<Answered> answers() const;
  void forgetAnswers();

  /// Every way in which an entry has failed so far.
  std::set<std::pair<std::string, cl_int>> failures() const;

  /// Records a call and returns its place, for the answer to come.
  std::size_t noteCall(const char *entry);
  void noteAnswer(std::size_t place, cl_int status);

  /// Keeps what the runtime is to call back with, until the frontier ends.
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
