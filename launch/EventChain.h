// Orders the commands of one launch by events, each after the one before.

#pragma once

#include <CL/cl.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace corvane {

/// References to events, released together in the order in which they were
/// added when the last owner of this object ends. That may be on any thread,
/// also on one in which the runtime calls back.
class HeldEvents {
public:
  HeldEvents() = default;
  ~HeldEvents();
  HeldEvents(const HeldEvents &) = delete;
  HeldEvents &operator=(const HeldEvents &) = delete;

  /// Allocates nothing if memory for the event was reserved.
  void add(cl_event event) { events.push_back(event); }
  void reserve(std::size_t count) { events.reserve(count); }

private:
  std::vector<cl_event> events;
};

/// What the next command has to wait for: at first the application's wait list,
/// then the event of the command before.
///
/// References to the events are kept until every run that shares them is over.
/// When an event is cancelled, a runtime has to fail all commands that wait for
/// it; some abort then if an event between these commands has no other
/// reference.
class EventChain {
public:
  /// Borrows the list, which must live as long as the chain.
  EventChain(cl_uint count, const cl_event *waitList)
      : firstCount(count), firstList(waitList) {}
  EventChain(const EventChain &) = delete;
  EventChain &operator=(const EventChain &) = delete;

  cl_uint waitCount() const { return last ? 1 : firstCount; }
  const cl_event *waitList() const { return last ? &last : firstList; }

  /// Gets the memory for that many events. Call before the first of them.
  void reserve(std::size_t count);

  /// Lets later commands wait for \p event, whose reference the chain takes
  /// over.
  void advance(cl_event event);

  /// What keeps the events alive, those to come included; null without reserve.
  const std::shared_ptr<HeldEvents> &events() const { return held; }

private:
  cl_uint firstCount;
  const cl_event *firstList;
  cl_event last = nullptr;
  std::shared_ptr<HeldEvents> held;
};

} // namespace corvane
