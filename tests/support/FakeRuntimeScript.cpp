// What a test tells the scripted runtime to do, and asks about what was done.

#include "tests/support/FakeRuntime.h"

using namespace corvane::test;

using Lock = std::lock_guard<std::recursive_mutex>;

std::vector<std::string>
FakeRuntime::transcript(const std::vector<std::string> &names) const {
  return world.transcript.texts(names);
}

void FakeRuntime::forgetTranscript() { world.transcript.clear(); }

void FakeRuntime::answer(const std::string &name, cl_int status,
                         std::optional<std::size_t> nth) {
  world.answers.script(name, status, nth);
}

void FakeRuntime::answerAny(std::size_t nth, cl_int status) {
  world.answers.scriptAny(nth, status);
}

std::size_t FakeRuntime::callCount() const { return world.answers.count(); }

void FakeRuntime::allowUnsetArguments() {
  Lock guard(world.lock);
  world.unsetArgumentsAllowed = true;
}

void FakeRuntime::whenCalled(const std::string &name,
                             std::function<void()> action) {
  Lock guard(world.lock);
  world.on[name] = std::move(action);
}

void FakeRuntime::takes(const std::string &kernel,
                        const std::vector<cl_ulong> &durations) {
  std::vector<Times> times;
  times.reserve(durations.size());
  for (cl_ulong duration : durations)
    times.emplace_back(1000, 1000 + duration);
  counters(kernel, times);
}

void FakeRuntime::counters(const std::string &kernel,
                           const std::vector<Times> &times) {
  Lock guard(world.lock);
  world.times[kernel].assign(times.begin(), times.end());
}

void FakeRuntime::endsWith(const std::string &kernel, cl_int status) {
  Lock guard(world.lock);
  world.endStatus[kernel] = status;
}

void FakeRuntime::late(bool late) { world.commands.setLate(late); }

void FakeRuntime::runAll() {
  while (runFirst()) {
  }
}

std::vector<std::string> FakeRuntime::waiting() const {
  return world.commands.waiting();
}

void FakeRuntime::holdCallbacks(bool hold) { world.commands.setHolding(hold); }

std::size_t FakeRuntime::fireCallbacks() { return world.commands.fireHeld(); }

void FakeRuntime::endEvent(cl_event event, cl_int status) {
  std::shared_ptr<Event> found;
  {
    Lock guard(world.lock);
    found = world.objects.find(event);
  }
  world.commands.endUserEvent(found, status);
}
