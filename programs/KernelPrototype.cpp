// Prepares a variant for the kernels that will have it.

#include "programs/KernelPrototype.h"

#include "llvm/ADT/STLExtras.h"

using namespace corvane;

static bool anyLooksAtArguments(const ConditionSet &conditions) {
  return llvm::any_of(conditions, [](const llvm::Transform &condition) {
    return condition.kind == llvm::Transform::DivisibleKind;
  });
}

KernelPrototype::Variant::Variant(const llvm::TransformedKernelAgent &found)
    : kernelName(found.kernelName()), record(found),
      spec(record.llvm::TransformedKernel::specText()),
      testsArguments(anyLooksAtArguments(found.conditions)) {}
