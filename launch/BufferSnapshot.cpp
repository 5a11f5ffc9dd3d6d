// Transfers between buffers and their host copies.

#include "launch/BufferShadow.h"

#include "agent/AgentState.h"
#include "agent/RuntimeTable.h"
#include "launch/ArgumentMemory.h"
#include "launch/KernelRecord.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace corvane;

BufferShadow::BufferShadow(AgentState &state, const KernelRecord &record) {
  for (const ArgSlot &slot : recordedArguments(record)) {
    if (slot.size != sizeof(cl_mem) || !slot.value)
      continue;
    cl_mem memObject = nullptr;
    std::memcpy(&memObject, slot.value, sizeof memObject);
    if (!add(state, memObject) &&
        mayBeWritableMemory(record.kernel, slot.index, memObject))
      complete = false;
  }
}

// Returns whether the handle is a recorded buffer's.
bool BufferShadow::add(AgentState &state, cl_mem memObject) {
  std::lock_guard<std::mutex> lock(state.buffersLock);
  const BufferRecord *buffer = state.buffers.find(memObject);
  if (!buffer)
    return false;
  // Of two records of one handle the older describes a buffer that is gone: the
  // runtime did not tell us, but it would not give out a living handle again.
  if (!buffer->hostMayTransfer || !state.buffers.isUnique(memObject))
    complete = complete && buffer->size == 0;
  else if (buffer->size != 0 && !contains(memObject))
    buffers.push_back({memObject, buffer->size, buffer->hostCopy});
  return true;
}

static HostCopy allocateHostCopy(std::size_t size) {
  auto area = std::make_shared<HostArea>();
  area->bytes.reset(std::malloc(size));
  return area->bytes ? area : nullptr;
}

bool BufferShadow::makeRoom(AgentState &state) {
  for (Buffer &buffer : buffers) {
    if (!buffer.hostCopy)
      buffer.hostCopy = allocateHostCopy(buffer.size);
    if (!buffer.hostCopy)
      return false;
    std::lock_guard<std::mutex> lock(state.buffersLock);
    if (BufferRecord *record = state.buffers.find(buffer.memObject))
      record->hostCopy = buffer.hostCopy;
  }
  return true;
}

bool BufferShadow::contains(cl_mem memObject) const {
  return std::any_of(buffers.begin(), buffers.end(), [&](const Buffer &buffer) {
    return buffer.memObject == memObject;
  });
}

bool BufferShadow::save(cl_command_queue queue, EventChain &chain) const {
  for (const Buffer &buffer : buffers) {
    cl_event saved = nullptr;
    const cl_int status = runtime().clEnqueueReadBuffer(
        queue, buffer.memObject, CL_FALSE, 0, buffer.size,
        buffer.hostCopy->bytes.get(), chain.waitCount(), chain.waitList(),
        &saved);
    if (status != CL_SUCCESS)
      return false;
    chain.advance(saved);
  }
  return true;
}

bool BufferShadow::restore(cl_command_queue queue, EventChain &chain) const {
  bool restoredAll = true;
  for (const Buffer &buffer : buffers) {
    cl_event restored = nullptr;
    const auto enqueueWrite = [&] {
      return runtime().clEnqueueWriteBuffer(
          queue, buffer.memObject, CL_FALSE, 0, buffer.size,
          buffer.hostCopy->bytes.get(), chain.waitCount(), chain.waitList(),
          &restored);
    };
    // The contents are the application's: a failure is not taken for an answer
    // the first time.
    if (enqueueWrite() == CL_SUCCESS || enqueueWrite() == CL_SUCCESS)
      chain.advance(restored);
    else
      restoredAll = false;
  }
  return restoredAll;
}

std::vector<HostCopy> BufferShadow::hostCopies() const {
  std::vector<HostCopy> copies;
  copies.reserve(buffers.size());
  for (const Buffer &buffer : buffers)
    copies.push_back(buffer.hostCopy);
  return copies;
}
