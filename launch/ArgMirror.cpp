// Lazy mirroring: a setting costs a copy, a variant pays when it is launched.

#include "launch/ArgMirror.h"

#include "agent/ClError.h"
#include "agent/RuntimeTable.h"

using namespace corvane;

void detail::recordUnusualSetting(KernelRecord &record, cl_uint index,
                                  std::size_t size, const void *value) {
  ArgSlot &recorded = *record.argSlots.find(index);
  const bool wasLost = recorded.isLost;
  recorded.isLost = !canBeRecorded(size, value);
  recorded.record(index, size, recorded.isLost ? nullptr : value);
  record.lostArguments += recorded.isLost;
  record.lostArguments -= wasLost;
  const auto isRecorded = [&](std::size_t at) {
    const ArgSlot *slot = record.argSlots.find(at);
    return slot && slot->index != ArgSlot::unset;
  };
  while (isRecorded(record.recordedCount))
    ++record.recordedCount;
  ++record.argSetCount;
}

bool detail::replayAllArguments(const KernelRecord &record, cl_kernel target) {
  bool complete = true;
  for (const ArgSlot &slot : recordedArguments(record)) {
    if (slot.isLost)
      continue;
    const cl_int status =
        runtime().clSetKernelArg(target, slot.index, slot.size, slot.value);
    if (status == CL_SUCCESS)
      continue;
    reportClError(CallSite::ReplayArgument, status);
    complete = false;
  }
  return complete;
}
