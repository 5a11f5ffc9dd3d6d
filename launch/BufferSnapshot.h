// A copy of what the buffers of a launch contain at one moment.

#pragma once

#include "launch/EventChain.h"
#include "launch/LaunchBuffers.h"
#include "programs/BufferRecord.h"

#include <optional>
#include <vector>

namespace corvane {

/// Host memory for the contents of all \p buffers, one area each. A buffer's
/// record keeps its area for the launches to come, so two snapshots that are
/// needed at the same time must not both be made of it. Nothing if there is not
/// enough memory: a later launch may find more. Hold the agent lock.
std::optional<std::vector<HostCopy>> hostMemoryOf(AgentState &state,
                                                  const LaunchBuffers &buffers);

/// The contents of the buffers of a launch, as soon as the enqueued transfers
/// are over.
///
/// Nothing waits for the transfers. The host memory must be held until they are
/// over; that is longer than this object lives.
class BufferSnapshot {
public:
  /// \p hostMemory has one area for each buffer, of the buffer's size or more.
  /// Borrows \p ofBuffers.
  BufferSnapshot(const LaunchBuffers &ofBuffers,
                 std::vector<HostCopy> hostMemory);

  /// Enqueues the reading of all buffers. False if one could not be enqueued;
  /// the chain then ends with the last one that could.
  bool save(cl_command_queue queue, EventChain &chain) const;

  /// Enqueues the writing of all that save has read. False if one could not be
  /// enqueued: then do not save again, which would overwrite the copy.
  bool restore(cl_command_queue queue, EventChain &chain) const;

  const std::vector<HostCopy> &hostMemory() const { return areas; }

private:
  llvm::ArrayRef<LaunchBuffer> buffers;
  std::vector<HostCopy> areas;
};

/// Keeps \p memory until the process ends. For transfers that are under way
/// while there is no event to tell when they are over: too long is better than
/// too short. Needs no memory for that, and keeps an area once at most. Hold
/// the agent lock.
void leakOnPurpose(const std::vector<HostCopy> &memory);

} // namespace corvane
