// Decides whether a launch may be tuned and what a command has to wait for.

#include "layer/CallContext.h"
#include "layer/CommandsInFlight.h"

#include <algorithm>
#include <iterator>
#include <utility>

using namespace corvane::layer;

// Whether the launch \p command may be tuned. If not, \p unsure gets the events
// that are in the way and may be over by now; none if asking changes nothing.
bool CommandsInFlight::mayTune(Command &command, const Conflicts &conflicts,
                               HeldEvents &unsure) {
  const auto isEntering = [](const CommandRef &each) {
    return each->isEntering;
  };
  if (CallContext::isInAgentsLaunch() || command.memory.anything ||
      isMapped(command.memory) ||
      std::any_of(conflicts.others.begin(), conflicts.others.end(), isEntering))
    return false;
  for (const CommandRef &other : conflicts.others)
    unsure.push_back(other->event);
  const bool hangs = mayHang(command, unsure);
  const bool canBeAsked =
      std::find(unsure.begin(), unsure.end(), nullptr) == unsure.end();
  if (!canBeAsked)
    unsure.clear();
  return !hangs && canBeAsked && unsure.empty();
}

static void addOnce(std::vector<cl_command_queue> &queues,
                    cl_command_queue queue) {
  if (std::find(queues.begin(), queues.end(), queue) == queues.end())
    queues.push_back(queue);
}

void CommandsInFlight::waitForTuned(Command &command,
                                    const Conflicts &conflicts,
                                    Admission &admission) {
  for (const CommandRef &launch : conflicts.tuned) {
    comeAfter(command, launch);
    admission.moreWaits.push_back(launch->event);
    if (launch->queue != command.queue)
      addOnce(admission.flushFirst, launch->queue);
  }
}

void CommandsInFlight::flushAncestors(const Command &command,
                                      Admission &admission) {
  if (!command.crossesQueues)
    return;
  ++walk;
  markAncestors(command);
  for (const auto &[handle, queue] : queues)
    if (handle != command.queue &&
        std::any_of(queue.commands.begin(), queue.commands.end(),
                    [this](const auto &each) { return each->visit == walk; }))
      addOnce(admission.flushFirst, handle);
}

void CommandsInFlight::enter(const CommandRef &command, Queue &queue,
                             const CommandRequest &request) {
  if (request.holdsQueue) {
    queue.heldBy.insert(queue.heldBy.end(), command->after.begin(),
                        command->after.end());
    queue.heldByOthers.insert(queue.heldByOthers.end(),
                              command->afterOthers.begin(),
                              command->afterOthers.end());
  }
  queue.commands.push_back(command);
  command->place = std::prev(queue.commands.end());
}

// False if \p unsure has events to ask about before the next attempt.
bool CommandsInFlight::tryToAdmit(const CommandRequest &request,
                                  bool wantsTuning, const HeldEvents &others,
                                  Admission &admission, HeldEvents &unsure) {
  const CommandRef &command = admission.command;
  HeldEvents released; // destroyed when the lock is free
  Lock guard(lock);
  while (true) {
    Queue &queue = queues[request.queue];
    queue.inOrder = admission.queueIsInOrder;
    order(*command, queue, request, others, released);
    const Conflicts conflicts = conflictsOf(*command, queue, !wantsTuning);
    // While this thread is in the agent, the runtime may call the application,
    // and what that enqueues must not wait for launches of other threads: those
    // may be waiting for this one to leave the agent.
    if (conflicts.tunedIsEntering && !CallContext::isInAgentsLaunch()) {
      someEntered.wait(guard);
      continue;
    }
    waitForTuned(*command, conflicts, admission);
    command->mayBeTuned = wantsTuning && mayTune(*command, conflicts, unsure);
    if (!unsure.empty()) {
      std::move(admission.moreWaits.begin(), admission.moreWaits.end(),
                std::back_inserter(released));
      admission.moreWaits.clear();
      admission.flushFirst.clear();
      return false;
    }
    admission.mayBeTuned = command->mayBeTuned;
    enter(command, queue, request);
    if (command->mayBeTuned)
      flushAncestors(*command, admission);
    return true;
  }
}

// Returns whether all of them are over.
bool CommandsInFlight::areOver(const HeldEvents &events) {
  bool all = true;
  for (const auto &event : events)
    all &= event->askIfOver();
  std::vector<CommandRef> over;
  {
    Lock guard(lock);
    for (const auto &event : events)
      if (const auto found = byEvent.find(event->get());
          event->isKnownToBeOver() && found != byEvent.end())
        over.push_back(found->second);
  }
  areOver(over);
  return all;
}

Admission CommandsInFlight::admit(const CommandRequest &request,
                                  bool wantsTuning) {
  Admission admission;
  const std::optional<bool> inOrder = askForOrder(request.queue);
  if (!inOrder)
    return admission;
  settleSome(request.queue);
  const HeldEvents others = waitsForOthers(request);
  admission.queueIsInOrder = *inOrder;
  admission.command = std::make_shared<Command>();
  admission.command->queue = request.queue;
  admission.command->memory = request.memory;
  admission.command->runsApplicationsCode = request.runsApplicationsCode;

  // New commands may come in while one attempt asks, so the attempts are
  // limited.
  HeldEvents unsure;
  for (int attemptsLeft = 3;
       !tryToAdmit(request, wantsTuning, others, admission, unsure);
       unsure.clear())
    wantsTuning = areOver(unsure) && --attemptsLeft != 0;
  return admission;
}

void CommandsInFlight::enqueued(const CommandRef &command,
                                std::shared_ptr<HeldEvent> event,
                                bool isTuned) {
  HeldEvents released;
  Lock guard(lock);
  command->mayBeTuned = isTuned;
  command->isEntering = false;
  if (event) {
    command->event = std::move(event);
    byEvent[command->event->get()] = command;
    std::list<CommandRef> &all = queues.find(command->queue)->second.commands;
    all.splice(all.end(), all, command->place);
  } else {
    remove(command, released);
  }
  someEntered.notify_all();
}
