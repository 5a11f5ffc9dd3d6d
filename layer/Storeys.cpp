// What the layer puts below the agent and above it.

#include "layer/Storeys.h"

#include "layer/Buffers.h"
#include "layer/KernelReferences.h"
#include "layer/Queues.h"

using namespace corvane;

void layer::standBelow(cl_icd_dispatch &agentCalls) {
  countKernelReferences(agentCalls);
}

void layer::standAbove(cl_icd_dispatch &applicationCalls) {
  answerAboutKernels(applicationCalls);
  hideProfiling(applicationCalls);
  leadBuffersToAgent(applicationCalls);
}
