// What the layer puts below the agent and above it.

#include "layer/Storeys.h"

#include "layer/AgentsBuild.h"
#include "layer/Buffers.h"
#include "layer/Builds.h"
#include "layer/HiddenKernels.h"
#include "layer/KeptKernels.h"
#include "layer/KernelReferences.h"
#include "layer/KernelsInProgram.h"
#include "layer/Launches.h"
#include "layer/Links.h"
#include "layer/Programs.h"
#include "layer/Queues.h"
#include "layer/SvmKernels.h"

using namespace corvane;

void layer::standBelow(cl_icd_dispatch &agentCalls) {
  countKernelReferences(agentCalls);
  watchBuilds(agentCalls);
  watchLaunches(agentCalls);
}

void layer::standAbove(cl_icd_dispatch &applicationCalls) {
  followPrograms(applicationCalls);
  serveBuilds(applicationCalls);
  serveLinks(applicationCalls);
  hideVariants(applicationCalls);
  createWithoutVariants(applicationCalls);
  answerAboutKernels(applicationCalls);
  releaseForgottenKernels(applicationCalls);
  noticeSvm(applicationCalls);
  repeatLostLaunches(applicationCalls);
  hideProfiling(applicationCalls);
  leadBuffersToAgent(applicationCalls);
}
