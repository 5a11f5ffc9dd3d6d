// Transfers between buffers and host memory.

#include "launch/BufferSnapshot.h"

#include "agent/AgentState.h"
#include "agent/RuntimeTable.h"

#include <cstdlib>
#include <mutex>
#include <utility>

using namespace corvane;

// Null if there is not enough memory.
static HostCopy allocate(std::size_t size) {
  auto area = std::make_shared<HostArea>();
  area->bytes.reset(std::malloc(size));
  return area->bytes ? area : nullptr;
}

// A thread of the runtime may drop the record at any moment. Without a record
// the buffer gets an area for this launch only.
static HostCopy memoryOf(AgentState &state, const LaunchBuffer &buffer) {
  std::lock_guard<std::mutex> lock(state.buffersLock);
  BufferRecord *record = state.buffers.find(buffer.memObject);
  if (!record)
    return allocate(buffer.size);
  if (!record->hostCopy)
    record->hostCopy = allocate(buffer.size);
  return record->hostCopy;
}

std::optional<std::vector<HostCopy>>
corvane::hostMemoryOf(AgentState &state, const LaunchBuffers &buffers) {
  std::vector<HostCopy> memory;
  memory.reserve(buffers.list().size());
  for (const LaunchBuffer &buffer : buffers.list()) {
    memory.push_back(memoryOf(state, buffer));
    if (!memory.back())
      return std::nullopt;
  }
  return memory;
}

BufferSnapshot::BufferSnapshot(const LaunchBuffers &ofBuffers,
                               std::vector<HostCopy> hostMemory)
    : buffers(ofBuffers.list()), areas(std::move(hostMemory)) {}

bool BufferSnapshot::save(cl_command_queue queue, EventChain &chain) const {
  for (std::size_t i = 0; i != buffers.size(); ++i) {
    cl_event saved = nullptr;
    const cl_int status = runtime().clEnqueueReadBuffer(
        queue, buffers[i].memObject, CL_FALSE, 0, buffers[i].size,
        areas[i]->bytes.get(), chain.waitCount(), chain.waitList(), &saved);
    if (status != CL_SUCCESS)
      return false;
    chain.advance(saved);
  }
  return true;
}

bool BufferSnapshot::restore(cl_command_queue queue, EventChain &chain) const {
  bool restoredAll = true;
  for (std::size_t i = 0; i != buffers.size(); ++i) {
    cl_event restored = nullptr;
    const auto enqueueWrite = [&] {
      return runtime().clEnqueueWriteBuffer(
          queue, buffers[i].memObject, CL_FALSE, 0, buffers[i].size,
          areas[i]->bytes.get(), chain.waitCount(), chain.waitList(),
          &restored);
    };
    // Tries twice, because without the write the application loses its
    // contents.
    if (enqueueWrite() == CL_SUCCESS || enqueueWrite() == CL_SUCCESS)
      chain.advance(restored);
    else
      restoredAll = false;
  }
  return restoredAll;
}

// Never emptied: transfers may be under way when the process ends.
static HostArea *lastLeaked = nullptr;

void corvane::leakOnPurpose(const std::vector<HostCopy> &memory) {
  for (const HostCopy &area : memory) {
    if (area->itself)
      continue;
    area->itself = area;
    area->leakedBefore = lastLeaked;
    lastLeaked = area.get();
  }
}
