// Drops the records of buffers that the runtime has destroyed.

#include "programs/BufferRecord.h"

#include "agent/AgentState.h"
#include "base/ForkedChild.h"

using namespace corvane;

// Unlocked: the runtime may call this while another thread holds the agent lock
// and waits for the runtime. The pin keeps the state alive; the leaf lock
// guards the table.
void CL_CALLBACK corvane::bufferReleased(cl_mem memObject, void *) {
  if (inForkedChild())
    return;
  StatePin pin;
  AgentState *state = agentState();
  if (!state)
    return;

  std::unique_ptr<BufferRecord> dropped;
  std::lock_guard<std::mutex> lock(state->buffersLock);
  dropped = state->buffers.remove(memObject);
}
