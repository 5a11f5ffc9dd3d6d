// A record as it is when its kernel has just been created.

#include "launch/KernelRecord.h"

using namespace corvane;

KernelRecord::KernelRecord(cl_program fromProgram, cl_kernel ofKernel,
                           std::shared_ptr<const KernelPrototype> ofItsKind)
    : program(fromProgram), kernel(ofKernel), prototype(std::move(ofItsKind)) {}
