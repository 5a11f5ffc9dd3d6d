// What a kernel is called, and whether that makes it a variant.

#pragma once

#include "variants/TransformedKernel.h"

#include <CL/cl.h>

#include <memory>
#include <string>

namespace corvane {

/// The function name of \p kernel as the runtime tells it; empty if it does
/// not.
std::string readKernelName(cl_kernel kernel);

/// The variant that a kernel of this name is, or null if it is an ordinary
/// kernel. A name too long for the buffer of a usual query is nobody's variant.
std::unique_ptr<llvm::TransformedKernelAgent>
variantOf(const std::string &kernelName);

} // namespace corvane
