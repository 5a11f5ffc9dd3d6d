// Records calls, makes them fail, and ends objects that are no longer used.

#include "tests/support/World.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace corvane::test;

using Lock = std::lock_guard<std::recursive_mutex>;

static World *theWorld = nullptr;

World::World() : commands(lock, [this](const Object &o) { settle(o); }) {
  if (theWorld) {
    std::fputs("There is a FakeRuntime already.\n", stderr);
    std::abort();
  }
  theWorld = this;
}

World::~World() { theWorld = nullptr; }

World &World::current(const char *entry) {
  if (!theWorld) {
    std::fprintf(stderr, "%s was called when there was no FakeRuntime.\n",
                 entry);
    std::abort();
  }
  return *theWorld;
}

std::optional<cl_int> World::failureOf(const std::string &entry) {
  std::function<void()> action;
  {
    Lock guard(lock);
    if (const auto found = on.find(entry); found != on.end())
      action = found->second;
  }
  if (action)
    action();
  return answers.next(entry);
}

cl_device_id World::device(unsigned number) {
  Lock guard(lock);
  while (devices.size() < number)
    devices.push_back(objects.add<cl_device_id>(std::make_shared<Device>()));
  return devices[number - 1];
}

unsigned World::numberOf(cl_device_id device) const {
  const auto found = std::find(devices.begin(), devices.end(), device);
  return found == devices.end()
             ? 0
             : static_cast<unsigned>(found - devices.begin()) + 1;
}

// Destructor callbacks are called in reverse order of registration, as OpenCL
// says.
void World::settle(const Object &object) {
  std::vector<std::function<void()>> destructors;
  {
    Lock guard(lock);
    if (!objects.endIfUnused(object))
      return;
    if (const auto *buffer = dynamic_cast<const Buffer *>(&object))
      destructors.assign(buffer->destructors.rbegin(),
                         buffer->destructors.rend());
  }
  for (auto &destructor : destructors)
    commands.fire(std::move(destructor));
}

Times World::nextTimes(const std::string &name) {
  std::deque<Times> &script = times[name];
  if (script.empty())
    return {1000, 2000};
  const Times next = script.front();
  if (script.size() > 1)
    script.pop_front();
  return next;
}
