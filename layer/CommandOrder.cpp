// Finds out which commands are ordered before another, and which are not.

#include "layer/CommandsInFlight.h"

#include <algorithm>
#include <iterator>
#include <utility>

using namespace corvane::layer;

void CommandsInFlight::comeAfter(Command &command, const CommandRef &earlier) {
  if (earlier->isOver)
    return;
  command.after.push_back(earlier);
  command.mayHang |= earlier->mayHang || earlier->runsApplicationsCode;
  command.crossesQueues |=
      earlier->crossesQueues || earlier->queue != command.queue;
}

template <typename List, typename IsOver>
static void dropOver(List &list, IsOver isOver, List &dropped) {
  const auto firstOver =
      std::stable_partition(list.begin(), list.end(),
                            [&](const auto &entry) { return !isOver(*entry); });
  std::move(firstOver, list.end(), std::back_inserter(dropped));
  list.erase(firstOver, list.end());
}

// Sets what \p command is ordered after, as far as that is known now. \p others
// are the events of its wait list that belong to no command.
void CommandsInFlight::order(Command &command, Queue &queue,
                             const CommandRequest &request,
                             const HeldEvents &others, HeldEvents &released) {
  command.after.clear();
  command.maybeAfter.clear();
  command.afterOthers = others;
  command.crossesQueues = false;
  command.mayHang = false;

  std::vector<CommandRef> over;
  dropOver(
      queue.heldBy, [](const Command &held) { return held.isOver; }, over);
  dropOver(
      queue.heldByOthers,
      [](const HeldEvent &event) { return event.isKnownToBeOver(); }, released);
  for (const CommandRef &earlier : queue.heldBy)
    comeAfter(command, earlier);
  command.afterOthers.insert(command.afterOthers.end(),
                             queue.heldByOthers.begin(),
                             queue.heldByOthers.end());
  command.mayHang |= !command.afterOthers.empty();

  for (cl_uint i = 0; i != request.waitCount; ++i)
    if (const auto found = byEvent.find(request.waitList[i]);
        found != byEvent.end())
      comeAfter(command, found->second);

  const bool all = !queue.inOrder && request.waitsForQueue;
  for (auto earlier = queue.commands.rbegin(); earlier != queue.commands.rend();
       ++earlier) {
    if ((*earlier)->isEntering) {
      command.maybeAfter.push_back(*earlier);
      command.mayHang |=
          (*earlier)->mayHang || (*earlier)->runsApplicationsCode;
      continue;
    }
    if (queue.inOrder || all)
      comeAfter(command, *earlier);
    if (!all)
      break;
  }
}

void CommandsInFlight::markAncestors(const Command &command) {
  std::vector<const Command *> open{&command};
  while (!open.empty()) {
    const Command &next = *open.back();
    open.pop_back();
    for (const CommandRef &earlier : next.after)
      if (earlier->visit != walk && !earlier->isOver) {
        earlier->visit = walk;
        open.push_back(earlier.get());
      }
  }
}

// The commands that may use the same memory and are not ordered before
// \p command.
CommandsInFlight::Conflicts
CommandsInFlight::conflictsOf(const Command &command, const Queue &own,
                              bool tunedOnly) {
  Conflicts conflicts;
  std::vector<CommandRef> tuned;
  std::vector<CommandRef> others;
  for (const auto &[handle, queue] : queues)
    for (const CommandRef &each : queue.commands) {
      const bool isOrdered = &queue == &own && own.inOrder && !each->isEntering;
      if (isOrdered || (tunedOnly && !each->mayBeTuned) ||
          !each->memory.overlaps(command.memory))
        continue;
      if (each->isEntering && each->mayBeTuned)
        conflicts.tunedIsEntering = true;
      else
        (each->mayBeTuned ? tuned : others).push_back(each);
    }
  if (tuned.empty() && others.empty())
    return conflicts;

  // The latest first: of launches in a chain the last one is enough.
  ++walk;
  markAncestors(command);
  for (auto each = tuned.rbegin(); each != tuned.rend(); ++each)
    if ((*each)->visit != walk) {
      (*each)->visit = walk;
      markAncestors(**each);
      conflicts.tuned.push_back(*each);
    }
  for (const CommandRef &each : others)
    if (each->visit != walk)
      conflicts.others.push_back(each);
  return conflicts;
}

// Whether a command or event that \p command waits for may wait for the
// application. \p pending gets the events that decide it, null for a command
// that has no event yet.
bool CommandsInFlight::mayHang(Command &command, HeldEvents &pending) {
  if (!command.mayHang)
    return false;
  const std::size_t before = pending.size();
  ++walk;
  std::vector<Command *> reached{&command};
  const auto visit = [&](const std::vector<CommandRef> &earlier) {
    for (const CommandRef &each : earlier) {
      if (each->isOver || std::exchange(each->visit, walk) == walk)
        continue;
      if (each->runsApplicationsCode)
        pending.push_back(each->event);
      if (each->mayHang)
        reached.push_back(each.get());
    }
  };
  for (std::size_t i = 0; i != reached.size(); ++i) {
    for (const auto &event : reached[i]->afterOthers)
      if (!event->isKnownToBeOver())
        pending.push_back(event);
    visit(reached[i]->after);
    visit(reached[i]->maybeAfter);
  }
  if (pending.size() != before)
    return true;
  for (Command *each : reached)
    each->mayHang = false;
  return false;
}
