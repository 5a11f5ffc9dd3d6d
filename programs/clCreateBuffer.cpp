// The hook of a buffer's creation: remembers buffers whose contents tuned
// launches may have to save and restore.

#include "agent/AgentState.h"
#include "agent/ClError.h"
#include "agent/Flags.h"
#include "agent/Owned.h"
#include "agent/RuntimeTable.h"
#include "programs/BufferRecord.h"
#include "programs/Hooks.h"

using namespace corvane;

static bool hostMayTransfer(cl_mem_flags flags) {
  constexpr cl_mem_flags restricted =
      CL_MEM_HOST_READ_ONLY | CL_MEM_HOST_WRITE_ONLY | CL_MEM_HOST_NO_ACCESS;
  return (flags & restricted) == 0;
}

static BufferRecord *recordBuffer(AgentState &state, cl_mem buffer,
                                  cl_mem_flags flags, std::size_t size) {
  auto record = std::make_unique<BufferRecord>();
  record->memObject = buffer;
  record->size = size;
  record->hostMayTransfer = hostMayTransfer(flags);

  std::unique_ptr<BufferRecord> gone;
  std::lock_guard<std::mutex> lock(state.buffersLock);
  const BufferRecord *older = state.buffers.find(buffer);
  if (older && !older->isWatched)
    gone = state.buffers.remove(buffer);
  return state.buffers.append(buffer, std::move(record));
}

// Without the callback the record stays until the handle comes again; the
// buffer is still usable.
static void watchForRelease(AgentState &state, cl_mem buffer,
                            BufferRecord *record) {
  const auto setCallback = runtime().clSetMemObjectDestructorCallback;
  const cl_int status = setCallback
                            ? setCallback(buffer, bufferReleased, record)
                            : CL_INVALID_OPERATION;
  if (status == CL_SUCCESS)
    return;
  reportClError(CallSite::BufferCallback, status);
  std::lock_guard<std::mutex> lock(state.buffersLock);
  if (record)
    record->isWatched = false;
}

cl_mem CL_API_CALL hooks::clCreateBuffer(cl_context context, cl_mem_flags flags,
                                         size_t size, void *hostPtr,
                                         cl_int *errcodeRet) {
  AgentGuard guard;
  cl_int localStatus = CL_SUCCESS;
  cl_int *status = errcodeRet ? errcodeRet : &localStatus;
  cl_mem created =
      runtime().clCreateBuffer(context, flags, size, hostPtr, status);
  AgentState *state = agentState();
  const bool isNeeded = state && (autotuneOutput() || state->tuning);
  if (*status != CL_SUCCESS || !isNeeded)
    return created;
  Owned<cl_mem> buffer(created);
  watchForRelease(*state, created, recordBuffer(*state, created, flags, size));
  return buffer.claim();
}
