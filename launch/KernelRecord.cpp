// A record as it is when its kernel has just been created.

#include "launch/KernelRecord.h"

using namespace corvane;

KernelRecord::KernelRecord(cl_program fromProgram, cl_kernel ofKernel,
                           std::string kernelName)
    : program(fromProgram), kernel(ofKernel), name(std::move(kernelName)) {
  argSlots.push_back(std::make_unique<ArgSlot>());
  argSlots.front()->index = 0;
  argSyncCounts[kernel] = 0;
}
