// Follows commands to their end.

#include "layer/CommandsInFlight.h"

#include "layer/ObjectTable.h"

#include <utility>

using namespace corvane::layer;

CommandsInFlight &corvane::layer::commandsInFlight() {
  return neverDestroyed<CommandsInFlight>();
}

std::optional<bool> CommandsInFlight::askForOrder(cl_command_queue queue) {
  {
    Lock guard(lock);
    const auto found = queues.find(queue);
    if (found != queues.end())
      return found->second.inOrder;
  }
  cl_command_queue_properties properties = 0;
  if (!queue || runtime().clGetCommandQueueInfo(queue, CL_QUEUE_PROPERTIES,
                                                sizeof properties, &properties,
                                                nullptr) != CL_SUCCESS)
    return std::nullopt;
  return (properties & CL_QUEUE_OUT_OF_ORDER_EXEC_MODE_ENABLE) == 0;
}

// The events of a wait list that are not over and that belong to no command
// that the layer knows: user events in the first place.
HeldEvents CommandsInFlight::waitsForOthers(const CommandRequest &request) {
  std::vector<cl_event> unknown;
  {
    Lock guard(lock);
    for (cl_uint i = 0; i != request.waitCount; ++i)
      if (byEvent.count(request.waitList[i]) == 0)
        unknown.push_back(request.waitList[i]);
  }
  HeldEvents others;
  for (cl_event event : unknown)
    if (auto held = HeldEvent::retain(event); held && !held->askIfOver())
      others.push_back(std::move(held));
  return others;
}

// Each call asks whether a few commands are over, so that the layer does not
// hold ever more events in a program that never waits.
void CommandsInFlight::settleSome(cl_command_queue queue) {
  constexpr std::size_t few = 4;
  std::vector<CommandRef> oldest;
  bool all = false;
  {
    Lock guard(lock);
    all = byEvent.size() >= settleAt;
    const auto found = queues.find(queue);
    if (found != queues.end())
      for (const CommandRef &command : found->second.commands) {
        if (oldest.size() == few)
          break;
        if (command->event)
          oldest.push_back(command);
      }
  }
  if (!all)
    return settle(oldest);
  settleAll();
  Lock guard(lock);
  settleAt = 2 * byEvent.size() + 64;
}

void CommandsInFlight::settleAll() {
  std::vector<CommandRef> asked;
  {
    Lock guard(lock);
    for (const auto &[event, command] : byEvent)
      asked.push_back(command);
  }
  settle(asked);
}

void CommandsInFlight::settle(const std::vector<CommandRef> &asked) {
  std::vector<CommandRef> over;
  for (const CommandRef &command : asked) {
    std::shared_ptr<HeldEvent> event;
    {
      Lock guard(lock);
      event = command->event;
    }
    if (event && event->askIfOver())
      over.push_back(command);
  }
  areOver(over);
}

void CommandsInFlight::areOver(const std::vector<CommandRef> &commands) {
  HeldEvents released; // destroyed when the lock is free
  Lock guard(lock);
  for (const CommandRef &command : commands)
    if (!command->isOver && !command->isEntering)
      remove(command, released);
}

std::vector<CommandRef> CommandsInFlight::commandsOf(cl_command_queue queue) {
  std::vector<CommandRef> commands;
  Lock guard(lock);
  const auto found = queues.find(queue);
  if (found != queues.end())
    for (const CommandRef &command : found->second.commands)
      if (!command->isEntering)
        commands.push_back(command);
  return commands;
}

void CommandsInFlight::remove(const CommandRef &command, HeldEvents &released) {
  command->isOver = true;
  command->after.clear();
  command->maybeAfter.clear();
  released.insert(released.end(), command->afterOthers.begin(),
                  command->afterOthers.end());
  command->afterOthers.clear();
  if (command->event) {
    byEvent.erase(command->event->get());
    released.push_back(std::move(command->event));
    command->event.reset();
  }
  const auto queue = queues.find(command->queue);
  queue->second.commands.erase(command->place);
  if (queue->second.commands.empty() && queue->second.heldBy.empty() &&
      queue->second.heldByOthers.empty())
    queues.erase(queue);
}
