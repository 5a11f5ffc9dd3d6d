// Saves the buffers of a launch before a variant spoils them, and restores
// them.

#pragma once

#include "launch/EventChain.h"
#include "programs/BufferRecord.h"

#include <vector>

namespace corvane {

struct AgentState;
struct KernelRecord;

/// The buffers among a kernel's recorded arguments.
///
/// Transfers are enqueued and not waited for, so whoever outlives them must
/// hold the host copies.
class BufferShadow {
public:
  /// Looks the arguments up among the recorded buffers. Waits for nothing of
  /// the runtime's. Hold the agent lock.
  BufferShadow(AgentState &state, const KernelRecord &record);

  /// False if an argument is memory that a variant could write to and that
  /// cannot be saved and restored: then no variant may run.
  bool isComplete() const { return complete; }

  /// Gets host memory for the contents of all buffers, which a buffer keeps for
  /// the launches to come. False if there is not enough: then no variant may
  /// run. A later launch may find more.
  bool makeRoom(AgentState &state);

  /// Enqueues the saves, for which there must be room. False if one could not
  /// be enqueued; the chain then ends with the last one that could.
  bool save(cl_command_queue queue, EventChain &chain) const;

  /// Enqueues the restores of everything that save has saved. False if one
  /// could not be enqueued: then what was saved must not be saved over.
  bool restore(cl_command_queue queue, EventChain &chain) const;

  /// How many buffers a save reads, each by one command.
  std::size_t bufferCount() const { return buffers.size(); }

  /// The memory that the transfers use; needs room.
  std::vector<HostCopy> hostCopies() const;

private:
  struct Buffer {
    cl_mem memObject;
    std::size_t size;
    HostCopy hostCopy; ///< null until there is room
  };

  bool add(AgentState &state, cl_mem memObject);
  bool contains(cl_mem memObject) const;

  std::vector<Buffer> buffers;
  bool complete = true;
};

} // namespace corvane
