// The record of a buffer, and host memory for its contents.

#pragma once

#include "agent/Owned.h"

#include <CL/cl.h>

#include <cstddef>
#include <memory>

namespace corvane {

struct HostArea;

/// Shared by the record and the transfers that are under way.
using HostCopy = std::shared_ptr<HostArea>;

/// Host memory that the runtime reads and writes while transfers are under way.
struct HostArea {
  std::unique_ptr<void, FreeMemory> bytes; ///< not initialised

  /// Set for good by leakOnPurpose, which needs no memory for that: the area
  /// itself, and the one that was leaked before it.
  HostCopy itself;
  HostArea *leakedBefore = nullptr;
};

/// Owned by the state; found by handle. The state's buffersLock guards it.
struct BufferRecord {
  cl_mem memObject = nullptr; ///< borrowed; the application holds it
  std::size_t size = 0;       ///< bytes, as the application asked for
  /// False if the host may not both read and write the buffer.
  bool hostMayTransfer = true;
  /// False if the runtime will not tell when the buffer is gone. Then the
  /// record is dropped when a new buffer gets the same handle.
  bool isWatched = true;
  /// size bytes; null until a launch with the buffer is tuned.
  HostCopy hostCopy;
};

/// Runs when the runtime destroys a recorded buffer, on any thread and without
/// the agent lock. Drops the record of \p memObject.
void CL_CALLBACK bufferReleased(cl_mem memObject, void *userData);

} // namespace corvane
