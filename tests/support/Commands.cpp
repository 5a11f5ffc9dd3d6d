// Keeps commands until their wait lists are over, and runs them in the order
// that the test chooses.

#include "tests/support/Commands.h"

#include <algorithm>

using namespace corvane::test;

using Lock = std::lock_guard<std::recursive_mutex>;

static bool mayRun(const Command &command) {
  return std::all_of(command.waitList.begin(), command.waitList.end(),
                     [](const auto &event) { return event->over(); });
}

void Commands::submit(Command command) {
  {
    Lock guard(lock);
    for (const auto &object : command.in)
      ++object->uses;
    ++command.event->uses;
    queued.push_back(std::move(command));
    changed.notify_all();
  }
  runAllIfPrompt();
}

void Commands::setLate(bool nowLate) {
  {
    Lock guard(lock);
    late = nowLate;
  }
  runAllIfPrompt();
}

void Commands::setHolding(bool nowHolding) {
  Lock guard(lock);
  holding = nowHolding;
}

void Commands::runAllIfPrompt() {
  while (true) {
    {
      Lock guard(lock);
      if (late)
        return;
    }
    if (!runFirst())
      return;
  }
}

bool Commands::runOne(bool youngest) {
  Command command;
  {
    Lock guard(lock);
    auto found = std::find_if(queued.begin(), queued.end(), mayRun);
    if (found == queued.end())
      return false;
    if (youngest)
      found = std::find_if(queued.rbegin(), queued.rend(), mayRun).base() - 1;
    command = std::move(*found);
    queued.erase(found);
    runners.push_back(std::this_thread::get_id());
  }
  if (command.work)
    command.work();
  Callbacks due;
  {
    Lock guard(lock);
    runners.erase(
        std::find(runners.begin(), runners.end(), std::this_thread::get_id()));
    due = markOver(*command.event, command.endStatus);
    changed.notify_all();
  }
  call(due, command.endStatus);

  Lock guard(lock);
  --command.event->uses;
  letGo(*command.event);
  for (const auto &object : command.in) {
    --object->uses;
    letGo(*object);
  }
  return true;
}

bool Commands::otherThreadsRun() const {
  return std::any_of(runners.begin(), runners.end(),
                     [](std::thread::id runner) {
                       return runner != std::this_thread::get_id();
                     });
}

// What another thread runs at the moment may be what the event waits for.
void Commands::runUntilOver(const Event &event, bool alsoWaits) {
  while (true) {
    {
      std::unique_lock<std::recursive_mutex> guard(lock);
      if (event.over())
        return;
      if (std::none_of(queued.begin(), queued.end(), mayRun)) {
        if (!alsoWaits && !otherThreadsRun())
          return;
        changed.wait(guard);
        continue;
      }
    }
    (void)runFirst();
  }
}

Commands::Callbacks Commands::markOver(Event &event, cl_int status) {
  if (event.over())
    return {};
  event.status = status;
  return std::exchange(event.callbacks, {});
}

void Commands::call(Callbacks &callbacks, cl_int status) {
  for (auto &callback : callbacks)
    fire([callback = std::move(callback), status] { callback(status); });
}

void Commands::endUserEvent(const std::shared_ptr<Event> &event,
                            cl_int status) {
  Callbacks due;
  {
    Lock guard(lock);
    due = markOver(*event, status);
    changed.notify_all();
  }
  call(due, status);
  runAllIfPrompt();
}

void Commands::whenOver(const std::shared_ptr<Event> &event,
                        std::function<void(cl_int)> callback) {
  {
    Lock guard(lock);
    ++event->uses;
    auto once = [this, event, callback = std::move(callback)](cl_int status) {
      callback(status);
      Lock innerGuard(lock);
      --event->uses;
      letGo(*event);
    };
    if (!event->over()) {
      event->callbacks.emplace_back(std::move(once));
      return;
    }
    callback = std::move(once);
  }
  fire([callback = std::move(callback), status = event->status] {
    callback(status);
  });
}

void Commands::fire(std::function<void()> callback) {
  {
    Lock guard(lock);
    if (holding) {
      held.push_back(std::move(callback));
      return;
    }
  }
  callback();
}

std::size_t Commands::fireHeld() {
  std::vector<std::function<void()>> due;
  {
    Lock guard(lock);
    due.swap(held);
  }
  for (const auto &callback : due)
    callback();
  return due.size();
}

std::vector<std::shared_ptr<Event>> Commands::unfinished() const {
  Lock guard(lock);
  std::vector<std::shared_ptr<Event>> events;
  for (const Command &command : queued)
    events.push_back(command.event);
  return events;
}

std::vector<std::string> Commands::waiting() const {
  Lock guard(lock);
  std::vector<std::string> calls;
  for (const Command &command : queued)
    calls.push_back(command.what);
  return calls;
}
