// Writes a variant's name back out.
#include "variants/TransformedKernel.h"

namespace llvm {

TransformedKernel::~TransformedKernel() = default;

std::string TransformedKernel::specText() const {
  std::string text;
  for (const Transform &condition : conditions)
    text += condition.specText();
  return text;
}

std::string TransformedKernelAgent::kernelName() const {
  return baseName + "_coarsed_" + TransformedKernel::specText();
}

std::string TransformedKernelAgent::specText() const { return kernelName(); }

} // namespace llvm
