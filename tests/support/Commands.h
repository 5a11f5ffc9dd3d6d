// Commands on the scripted device, and the events that tell of their end.

#pragma once

#include "tests/support/FakeObjects.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace corvane::test {

struct Command {
  std::string what; ///< the call that enqueued it
  std::vector<std::shared_ptr<Event>> waitList;
  std::shared_ptr<Event> event;            ///< never null
  std::vector<std::shared_ptr<Object>> in; ///< what it needs until its end
  std::function<void()> work;
  cl_int endStatus = CL_COMPLETE;
};

/// Runs commands when their wait lists are over: at once, or when the test
/// says. Queues do not keep their order, so only wait lists order two commands.
class Commands {
public:
  using Letter = std::function<void(const Object &)>;

  /// \p objectLock guards the objects; it is not held while work or callbacks
  /// run. \p whenLetGo is called with each object that a command needs no
  /// longer.
  Commands(std::recursive_mutex &objectLock, Letter whenLetGo)
      : lock(objectLock), letGo(std::move(whenLetGo)) {}

  void submit(Command command);

  /// Whether commands wait for runFirst and runLast.
  void setLate(bool late);
  /// Whether callbacks wait for fireHeld.
  void setHolding(bool holding);

  /// Runs the oldest or the youngest of the commands that may run, on this
  /// thread. Returns false if there is none.
  bool runFirst() { return runOne(false); }
  bool runLast() { return runOne(true); }

  /// Runs commands, oldest first, until \p event is over or none may run.
  void runUntilOver(const Event &event) { runUntilOver(event, false); }

  /// The same, and waits for other threads to submit or end what this one
  /// cannot.
  void waitUntilOver(const Event &event) { runUntilOver(event, true); }

  /// Ends an event that is no command's and runs what waits for it, unless
  /// commands are late.
  void endUserEvent(const std::shared_ptr<Event> &event, cl_int status);

  /// Calls \p callback with the status once \p event is over.
  void whenOver(const std::shared_ptr<Event> &event,
                std::function<void(cl_int)> callback);

  /// Calls \p callback now, or holds it.
  void fire(std::function<void()> callback);

  /// Calls the callbacks held, on this thread, and returns how many they were.
  std::size_t fireHeld();

  /// The events of all commands that have not run yet.
  std::vector<std::shared_ptr<Event>> unfinished() const;

  /// The calls whose commands have not run yet.
  std::vector<std::string> waiting() const;

private:
  using Callbacks = std::vector<std::function<void(cl_int)>>;

  bool runOne(bool youngest);
  void runUntilOver(const Event &event, bool alsoWaits);
  /// Hold the lock for these two.
  Callbacks markOver(Event &event, cl_int status);
  bool otherThreadsRun() const;
  /// Hold no lock.
  void call(Callbacks &callbacks, cl_int status);
  void runAllIfPrompt();

  std::recursive_mutex &lock;
  std::condition_variable_any changed; ///< something was submitted or ended
  Letter letGo;
  bool late = false;
  bool holding = false;
  std::vector<Command> queued;
  std::vector<std::thread::id> runners; ///< one for each command that runs now
  std::vector<std::function<void()>> held;
};

} // namespace corvane::test
