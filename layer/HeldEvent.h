// References that the layer holds to events of the application's commands.

#pragma once

#include "layer/LayerTable.h"

#include <atomic>
#include <memory>
#include <vector>

namespace corvane::layer {

/// One reference to an event, given back at the end. Any thread may call.
class HeldEvent {
public:
  /// Takes over a reference to \p event, which must not be null.
  static std::shared_ptr<HeldEvent> adopt(cl_event event);

  /// Takes a reference of its own; null if the runtime does not give one.
  static std::shared_ptr<HeldEvent> retain(cl_event event);

  ~HeldEvent();
  HeldEvent(const HeldEvent &) = delete;
  HeldEvent &operator=(const HeldEvent &) = delete;

  cl_event get() const { return event; }

  /// Asks the runtime whether the event is complete or ended by an error. Do
  /// not hold a lock: a runtime may call back while its event is locked.
  bool askIfOver();

  /// What the last question found out.
  bool isKnownToBeOver() const { return over; }

private:
  explicit HeldEvent(cl_event heldEvent);

  const cl_event event;
  std::atomic<bool> over{false};
};

using HeldEvents = std::vector<std::shared_ptr<HeldEvent>>;

/// How many references to \p event the layer holds at this moment: what the
/// application is told of its references must not include them.
cl_uint heldReferences(cl_event event);

} // namespace corvane::layer
