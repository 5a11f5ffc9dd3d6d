// Names objects, gives them handles, and finds misuses.

#include "tests/support/Objects.h"

#include <algorithm>

using namespace corvane::test;

static bool startsWith(const std::string &text, const std::string &start) {
  return text.compare(0, start.size(), start) == 0;
}

// A kernel is called by its name, and one that is created again later has the
// same name again. Every other object has a number that no later one gets.
std::string Objects::freeName(const std::string &kind,
                              const std::string &name) {
  if (name.empty())
    return kind + " " + std::to_string(++lastNumber[kind]);
  const auto isTaken = [this](const std::string &wanted) {
    return std::any_of(living.begin(), living.end(), [&](const auto &object) {
      return object->name == wanted;
    });
  };
  const std::string first = kind + " " + name;
  std::string wanted = first;
  for (unsigned number = 2; isTaken(wanted); ++number)
    wanted = first + " " + std::to_string(number);
  return wanted;
}

void *Objects::freeHandle(const std::string &kind) {
  if (recycleHandles) {
    for (const auto &[handle, name] : gone) {
      if (!startsWith(name, kind + " "))
        continue;
      void *recycled = handle;
      gone.erase(recycled);
      return recycled;
    }
  }
  places.emplace_back();
  return &places.back();
}

void *Objects::addObject(const std::shared_ptr<Object> &object,
                         const std::string &kind, const std::string &name) {
  object->name = freeName(kind, name);
  object->handle = freeHandle(kind);
  living.push_back(object);
  byHandle[object->handle] = object;
  return object->handle;
}

std::shared_ptr<Object> Objects::findObject(void *handle, bool inUseIsEnough) {
  std::string name;
  if (const auto found = byHandle.find(handle); found != byHandle.end()) {
    if (found->second->references != 0 || inUseIsEnough)
      return found->second;
    name = found->second->name;
  } else if (const auto ended = gone.find(handle); ended != gone.end()) {
    name = ended->second;
  }
  if (!name.empty())
    misuses.push_back(name + " used after its end");
  return nullptr;
}

std::string Objects::nameOfObject(void *handle, const std::string &kind) const {
  if (!handle)
    return "null";
  const auto found = byHandle.find(handle);
  if (found != byHandle.end())
    return found->second->name;
  const auto ended = gone.find(handle);
  return ended != gone.end() ? ended->second + " (gone)" : kind + " ?";
}

bool Objects::endIfUnused(const Object &object) {
  if (object.references != 0 || object.uses != 0 || !object.handle)
    return false;
  const auto found = byHandle.find(object.handle);
  if (found == byHandle.end() || found->second.get() != &object)
    return false;
  gone[object.handle] = object.name;
  byHandle.erase(found);
  living.erase(
      std::find_if(living.begin(), living.end(),
                   [&](const auto &other) { return other.get() == &object; }));
  return true;
}

std::vector<std::string> Objects::alive(const std::string &kind) const {
  std::vector<std::string> names;
  for (const auto &object : living)
    if (object->references != 0 && startsWith(object->name, kind + " "))
      names.push_back(object->name);
  return names;
}
