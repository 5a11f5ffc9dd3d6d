// Makes an application's calls and checks how the agent answers them.

#pragma once

#include "tests/support/AgentBoundary.h"
#include "tests/support/FakeRuntime.h"

#include <CL/cl.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace corvane::test {

/// Makes calls and expects of each that it answers what the runtime has
/// answered. If memory was refused it may throw instead; then the agent's lock
/// is free and the call has done nothing.
class Caller {
public:
  Caller(FakeRuntime &ofStory, AgentBoundary &aroundAgent)
      : runtime(ofStory), boundary(aroundAgent) {}

  /// Loads the agent, twice if the first time fails, and returns whether that
  /// worked; and unloads it.
  bool load();
  void unload();

  /// Says whether the agent autotunes.
  void expectTuning(bool agentTunes) { tunes = agentTunes; }

  /// What the application calls through.
  const DispatchTable &cl() const { return boundary.table(); }

  /// Makes a call to \p entry once, and once more if it fails. Returns whether
  /// it worked.
  bool tryTwice(const char *entry, const std::function<cl_int()> &call);

  /// Makes the call once. An exception counts as a failure.
  bool tryOnce(const char *entry, const std::function<cl_int()> &call);

  /// Whether, in the latest call, the runtime took a launch that does the
  /// application's work: its kernel's or, unless the agent is tuning, that of a
  /// variant in its place.
  bool kernelRan() const;

  /// Whether the runtime refused a call of this name during the latest one, or
  /// the latest two.
  bool wasRefused(const char *entry) const { return timesRefused(entry) != 0; }
  std::size_t timesRefused(const char *entry) const {
    return refused.count(entry);
  }

  /// Whether the agent was refused memory in some call.
  bool wasRefusedMemory() const { return memoryRefused; }

  /// The entries that were called so far.
  const std::set<std::string> &calls() const { return allCalls; }

  /// How often a call of this name worked in the runtime so far.
  std::size_t callsThatWorked(const std::string &entry) const;

private:
  bool attempt(const char *entry, const std::function<cl_int()> &call);
  bool endRefusals();
  void lookBack();
  void expectAnswer(const std::string &entry, cl_int status) const;
  void expectNothingDone(const std::string &entry) const;
  void expectFreeLock();

  FakeRuntime &runtime;
  AgentBoundary &boundary;
  bool tunes = false;
  std::vector<Answered> answers; ///< during the latest call
  std::vector<std::string> taken;
  std::multiset<std::string> refused;
  bool memoryRefused = false;
  std::set<std::string> allCalls;
  std::map<std::string, std::size_t> worked;
};

} // namespace corvane::test
