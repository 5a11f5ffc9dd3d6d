// Orders the commands of one launch by events, each after the one before.

#pragma once

#include <CL/cl.h>

namespace corvane {

/// What the next command has to wait for: at first the application's wait list,
/// then the event of the command before. Holds one reference to that event.
class EventChain {
public:
  /// Borrows the list, which must live as long as the chain.
  EventChain(cl_uint count, const cl_event *waitList)
      : firstCount(count), firstList(waitList) {}
  ~EventChain() { release(); }
  EventChain(const EventChain &) = delete;
  EventChain &operator=(const EventChain &) = delete;

  cl_uint waitCount() const { return last ? 1 : firstCount; }
  const cl_event *waitList() const { return last ? &last : firstList; }

  /// Lets later commands wait for \p event, whose reference the chain takes
  /// over.
  void advance(cl_event event);

  /// Gives the last event back; the chain is as it was at first.
  void release();

private:
  cl_uint firstCount;
  const cl_event *firstList;
  cl_event last = nullptr;
};

} // namespace corvane
