// Lazy mirroring: a setting costs a copy, a variant pays when it is launched.

#include "launch/ArgMirror.h"

#include "agent/ClError.h"
#include "agent/RuntimeTable.h"
#include "launch/KernelRecord.h"

using namespace corvane;

// A slot this far out could only be reached over as many others, and no kernel
// has as many arguments: a runtime that accepts the index is wrong.
static constexpr cl_uint mostArguments = 1U << 16;

void corvane::makeRoomForArgument(KernelRecord &record, cl_uint index,
                                  size_t size, const void *value) {
  if (index >= mostArguments)
    return;
  auto &slots = record.argSlots;
  if (index >= slots.size())
    slots.resize(std::size_t{index} + 1);
  if (!slots[index])
    slots[index] = std::make_unique<ArgSlot>();
  if (value)
    slots[index]->makeRoom(size);
}

static bool isRecorded(const std::unique_ptr<ArgSlot> &slot) {
  return slot && slot->index != ArgSlot::unset;
}

void corvane::recordArgument(KernelRecord &record, cl_uint index, size_t size,
                             const void *value) {
  if (index >= mostArguments)
    return;
  const auto &slots = record.argSlots;
  slots[index]->record(index, size, value);
  while (record.recordedCount < slots.size() &&
         isRecorded(slots[record.recordedCount]))
    ++record.recordedCount;
  ++record.argSetCount;
}

bool corvane::replayArguments(KernelRecord &record, cl_kernel target) {
  std::uint32_t &seen = record.argSyncCounts[target];
  if (seen >= record.argSetCount)
    return true;
  bool complete = true;
  for (const ArgSlot &slot : recordedArguments(record)) {
    const cl_int status =
        runtime().clSetKernelArg(target, slot.index, slot.size, slot.value);
    if (status == CL_SUCCESS)
      continue;
    reportClError(CallSite::ReplayArgument, status);
    complete = false;
  }
  seen = record.argSetCount;
  return complete;
}

void corvane::forgetReplay(KernelRecord &record, cl_kernel target) {
  record.argSyncCounts[target] = 0;
}
