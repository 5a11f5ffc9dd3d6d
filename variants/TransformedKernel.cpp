// Asks the conditions of a variant in order, and rebuilds its name.
#include "variants/TransformedKernel.h"

#include <algorithm>

namespace llvm {

TransformedKernel::~TransformedKernel() = default;

std::string TransformedKernel::specText() const {
  std::string text;
  for (const Transform &condition : conditions)
    text += condition.specText();
  return text;
}

const Transform *
TransformedKernel::findRejecting(std::uint32_t workDim,
                                 const std::size_t *globalSizes,
                                 const std::size_t *localSizes) const {
  for (const Transform &condition : conditions)
    if (!condition.acceptsLaunch(workDim, globalSizes, localSizes))
      return &condition;
  return nullptr;
}

const Transform *
TransformedKernel::findRejectingArgument(std::uint32_t index, std::size_t size,
                                         const void *value) const {
  for (const Transform &condition : conditions)
    if (!condition.acceptsArgument(index, size, value))
      return &condition;
  return nullptr;
}

void TransformedKernel::adjustLaunch(std::uint32_t workDim,
                                     std::size_t *globalSizes,
                                     std::size_t *localSizes) const {
  for (const Transform &condition : conditions)
    condition.adjustLaunch(workDim, globalSizes, localSizes);
}

std::string TransformedKernelAgent::kernelName() const {
  return baseName + "_coarsed_" + TransformedKernel::specText();
}

std::string TransformedKernelAgent::specText() const { return kernelName(); }

} // namespace llvm

bool corvane::prepareLaunch(const llvm::TransformedKernel &record,
                            std::uint32_t workDim,
                            const std::size_t *globalSizes,
                            const std::size_t *localSizes,
                            std::size_t *outGlobal, std::size_t *outLocal) {
  if (!globalSizes || !record.acceptsLaunch(workDim, globalSizes, localSizes))
    return false;

  std::copy_n(globalSizes, workDim, outGlobal);
  std::copy_n(localSizes, workDim, outLocal);
  record.adjustLaunch(workDim, outGlobal, outLocal);
  return true;
}
