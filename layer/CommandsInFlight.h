// The commands of the application that may not be over, and their order.

#pragma once

#include "layer/HeldEvent.h"
#include "layer/MemoryObjects.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

namespace corvane::layer {

/// A command that is about to be enqueued.
struct CommandRequest {
  cl_command_queue queue = nullptr;
  TouchedMemory memory;
  cl_uint waitCount = 0;
  const cl_event *waitList = nullptr;
  /// It runs a function of the application's, which may let it wait: a native
  /// kernel, for example.
  bool runsApplicationsCode = false;
  /// It waits for all that was enqueued before, whatever the queue's order.
  bool waitsForQueue = false;
  /// Later commands of the queue wait for what it waits for, whatever the
  /// queue's order.
  bool holdsQueue = false;
};

/// A command between its call and its end; guarded by the lock of
/// `CommandsInFlight`.
struct Command {
  cl_command_queue queue = nullptr;
  TouchedMemory memory;
  bool mayBeTuned = false;
  bool runsApplicationsCode = false;
  /// The call that enqueues it has not returned: nothing is ordered after it.
  bool isEntering = true;
  bool isOver = false;
  std::shared_ptr<HeldEvent> event; ///< null while entering and when over
  /// What ends before it starts, as far as that was not over at the call.
  std::vector<std::shared_ptr<Command>> after;
  /// What was entering its queue meanwhile and may have to end before it.
  std::vector<std::shared_ptr<Command>> maybeAfter;
  HeldEvents afterOthers; ///< events that are no command's of ours
  bool mayHang =
      false; ///< may wait for the application; once false, always false
  bool crossesQueues = false; ///< comes after commands of other queues
  std::uint64_t visit = 0;    ///< the last walk that came here
  std::list<std::shared_ptr<Command>>::iterator place; ///< in its queue
};

using CommandRef = std::shared_ptr<Command>;

/// Under which conditions a command may be enqueued now.
struct Admission {
  CommandRef command; ///< null: the runtime does not know the queue
  bool mayBeTuned = false;
  bool queueIsInOrder = true;
  /// Ends of autotuned launches that it must wait for beyond its own list.
  HeldEvents moreWaits;
  /// Queues to flush first: what it waits for must not need the application's
  /// next call.
  std::vector<cl_command_queue> flushFirst;
};

/// Keeps an autotuned launch, which saves and restores whole buffers, apart
/// from commands that could touch the same memory at the same time.
///
/// A launch may be tuned only if all that may be touching its memory ends
/// before it starts, and if nothing that it waits for can wait for the
/// application in turn. So whatever touches its memory later can be made to
/// wait for it without a deadlock.
///
/// Any thread may call. The lock is not held while the runtime is called, nor
/// while an event is given back.
class CommandsInFlight {
public:
  /// Call before a command is enqueued, and `enqueued` after it on the same
  /// thread. With \p wantsTuning it is a launch whose variants could
  /// run. Waits only while another thread is inside the call that enqueues an
  /// autotuned launch on the same memory, and never for a device.
  Admission admit(const CommandRequest &request, bool wantsTuning);

  /// \p event is the command's; null if the command is over or was refused.
  /// Later commands on the same memory wait for a launch that \p isTuned.
  void enqueued(const CommandRef &command, std::shared_ptr<HeldEvent> event,
                bool isTuned);

  /// The commands of a queue whose calls have returned; say `areOver` when the
  /// runtime has finished the queue.
  std::vector<CommandRef> commandsOf(cl_command_queue queue);
  void areOver(const std::vector<CommandRef> &commands);

  /// Asks after every command and gives back the events of those that are over.
  void settleAll();

private:
  struct Queue {
    bool inOrder = true;
    std::list<CommandRef> commands; ///< in order where the queue is
    std::vector<CommandRef> heldBy; ///< later commands come after these
    HeldEvents heldByOthers;
  };
  using Lock = std::unique_lock<std::mutex>;
  /// Commands that may use the same memory and are not ordered before.
  struct Conflicts {
    std::vector<CommandRef> tuned;
    std::vector<CommandRef> others;
    bool tunedIsEntering = false;
  };

  // These take the lock themselves.
  std::optional<bool> askForOrder(cl_command_queue queue);
  HeldEvents waitsForOthers(const CommandRequest &request);
  void settleSome(cl_command_queue queue);
  void settle(const std::vector<CommandRef> &asked);
  bool areOver(const HeldEvents &events);
  void remove(const CommandRef &command, HeldEvents &released);

  // Hold the lock.
  static void comeAfter(Command &command, const CommandRef &earlier);
  void order(Command &command, Queue &queue, const CommandRequest &request,
             const HeldEvents &others, HeldEvents &released);
  void markAncestors(const Command &command);
  Conflicts conflictsOf(const Command &command, const Queue &own,
                        bool tunedOnly);
  bool mayHang(Command &command, HeldEvents &pending);
  bool mayTune(Command &command, const Conflicts &conflicts,
               HeldEvents &unsure);
  static void waitForTuned(Command &command, const Conflicts &conflicts,
                           Admission &admission);
  void flushAncestors(const Command &command, Admission &admission);
  static void enter(const CommandRef &command, Queue &queue,
                    const CommandRequest &request);

  bool tryToAdmit(const CommandRequest &request, bool wantsTuning,
                  const HeldEvents &others, Admission &admission,
                  HeldEvents &unsure);

  std::mutex lock;
  std::condition_variable someEntered;
  std::unordered_map<cl_command_queue, Queue> queues;
  std::unordered_map<cl_event, CommandRef> byEvent;
  std::uint64_t walk = 0;
  std::size_t settleAt = 64; ///< commands that make it worth to ask after all
};

/// The commands of this process.
CommandsInFlight &commandsInFlight();

} // namespace corvane::layer
