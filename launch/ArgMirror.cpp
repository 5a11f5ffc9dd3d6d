// Lazy mirroring: a setting costs a copy, a variant pays when it is launched.

#include "launch/ArgMirror.h"

#include "agent/ClError.h"
#include "agent/RuntimeTable.h"

using namespace corvane;

void detail::makeSlot(KernelRecord &record, cl_uint index) {
  record.argSlots.resize(std::size_t{index} + 1);
  record.argSlots.front().index = 0;
}

void detail::recordFirstSetting(KernelRecord &record, cl_uint index,
                                std::size_t size, const void *value) {
  const auto &slots = record.argSlots;
  record.argSlots[index].record(index, size, value);
  while (record.recordedCount < slots.size() &&
         slots[record.recordedCount].index != ArgSlot::unset)
    ++record.recordedCount;
  ++record.argSetCount;
}

// Slots move when the runtime calls somebody back who sets one more.
bool detail::replayAllArguments(const KernelRecord &record, cl_kernel target) {
  bool complete = true;
  for (std::size_t i = 0; i < recordedArguments(record).size(); ++i) {
    const ArgSlot &slot = recordedArguments(record)[i];
    const cl_int status =
        runtime().clSetKernelArg(target, slot.index, slot.size, slot.value);
    if (status == CL_SUCCESS)
      continue;
    reportClError(CallSite::ReplayArgument, status);
    complete = false;
  }
  return complete;
}
