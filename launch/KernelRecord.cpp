// A record as it is when its kernel has just been created.

#include "launch/KernelRecord.h"

#include "agent/MapGrowth.h"

using namespace corvane;

KernelRecord::KernelRecord(cl_program fromProgram, cl_kernel ofKernel,
                           std::string kernelName)
    : program(fromProgram), kernel(ofKernel), name(std::move(kernelName)) {
  argSlots.push_back(std::make_unique<ArgSlot>());
  argSlots.front()->index = 0;
  makeRoomForOne(argSyncCounts);
  argSyncCounts[kernel] = 0;
}
