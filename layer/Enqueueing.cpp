// Makes wait lists longer, asks for events, and deals with failed calls.

#include "layer/Enqueueing.h"

#include "layer/TuningMode.h"

#include <utility>

using namespace corvane::layer;

Enqueueing::Enqueueing(CommandRequest request, const EnqueueArguments &asked,
                       bool blocking, CallContext *launch)
    : given(asked), isBlocking(blocking), launchContext(launch), toGive(asked) {
  // Arguments that contradict each other are the runtime's to refuse.
  if ((asked.waitCount == 0) != (asked.waitList == nullptr))
    return;
  request.waitCount = asked.waitCount;
  request.waitList = asked.waitList;
  admission = commandsInFlight().admit(request, launch != nullptr);
  if (!admission.command)
    return;
  if (admission.mayBeTuned) {
    launch->tuning = LaunchTuning::Allowed;
    launch->isWithAgent = true;
  }
  for (cl_command_queue queue : admission.flushFirst)
    (void)runtime().clFlush(queue);
  if (!admission.moreWaits.empty()) {
    waits.assign(asked.waitList, asked.waitList + asked.waitCount);
    for (const auto &event : admission.moreWaits)
      waits.push_back(event->get());
    toGive.waitCount = static_cast<cl_uint>(waits.size());
    toGive.waitList = waits.data();
  }
  if (!asked.event && !blocking)
    toGive.event = &ownEvent;
}

// A launch that fails after its variants were enqueued leaves transfers under
// way. In a queue that is in order a marker tells of their end.
static cl_event markEndOf(cl_command_queue queue) {
  cl_event marker = nullptr;
  if (!runtime().clEnqueueMarkerWithWaitList ||
      runtime().clEnqueueMarkerWithWaitList(queue, 0, nullptr, &marker) !=
          CL_SUCCESS)
    return nullptr;
  (void)runtime().clFlush(queue);
  return marker;
}

// A launch that is tuned later waits for a user event of the agent's.
bool Enqueueing::isTuned() const {
  return admission.mayBeTuned &&
         (tuningMode() == TuningMode::Autotune || launchContext->hasUserEvent);
}

cl_int Enqueueing::returned(cl_int status) {
  if (!admission.command)
    return status;
  std::shared_ptr<HeldEvent> event;
  if (status != CL_SUCCESS) {
    if (isTuned() && admission.queueIsInOrder)
      if (cl_event marker = markEndOf(admission.command->queue))
        event = HeldEvent::adopt(marker);
  } else if (ownEvent) {
    event = HeldEvent::adopt(ownEvent);
  } else if (given.event && !isBlocking) {
    event = HeldEvent::retain(*given.event);
  }
  commandsInFlight().enqueued(admission.command, std::move(event), isTuned());
  return status;
}
