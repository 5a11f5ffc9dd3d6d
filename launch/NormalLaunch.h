// The launch of a kernel, or of one variant in its place.

#pragma once

#include "launch/Launch.h"
#include "launch/VariantChoice.h"

#include "llvm/Support/raw_ostream.h"

namespace corvane {

struct AgentState;

/// Gives \p variant the arguments of \p record. False if the runtime refuses
/// one: it is reported, and all are given again before the next launch. Hold
/// the agent lock.
bool giveArguments(const KernelRecord &record, VariantKernel &variant);

/// Launches the variant of \p choice, which takes \p launch, with the arguments
/// of \p record; returns the runtime's status. A variant that cannot get its
/// hidden argument leaves the launch to the application's kernel. Hold the
/// agent lock.
cl_int launchVariant(const KernelRecord &record, const VariantChoice &choice,
                     const Launch &launch, llvm::raw_ostream *log);

/// Launches the variant that takes \p launch, or else the application's kernel.
/// A failure is reported and returned. \p state may be null, and \p log, the
/// diagnostic log. Hold the agent lock.
cl_int launchNormally(AgentState *state, const Launch &launch,
                      llvm::raw_ostream *log);

} // namespace corvane
