// Finds variables that differ through the values that they are given.
#include "coarsening/DifferingValues.h"

#include "coarsening/Walk.h"

namespace corvane::coarsening {

void DifferingValues::findAddressed() {
  forEachNode(kernel.getBody(), [this](const clang::Stmt &node) {
    const auto *expr = llvm::dyn_cast<clang::Expr>(&node);
    if (!expr)
      return;
    const ExpressionFacts &facts = out.expressions.factsOf(*expr);
    for (const clang::VarDecl *variable : facts.addressed)
      if (isLocal(*variable))
        localAddressed.insert(variable);
      else
        makeDiffer(*variable);
    if (facts.volatileLocal && sharesLocalMemory())
      out.verdict.refuse(Reason::VolatileLocal);
  });
  for (const clang::ParmVarDecl *parameter : kernel.parameters()) {
    const clang::QualType type = parameter->getType();
    hasLocalArgument |=
        type->isPointerType() &&
        type->getPointeeType().getAddressSpace() == clang::LangAS::opencl_local;
  }
}

void DifferingValues::makeDiffer(const clang::VarDecl &variable) {
  if (!isProgramWide(variable) && !(sharesLocalMemory() && isLocal(variable)))
    out.variables.insert(&variable);
}

bool DifferingValues::isDeclaredIn(const clang::VarDecl &variable,
                                   clang::SourceRange range) const {
  if (llvm::isa<clang::ParmVarDecl>(variable))
    return false;
  const unsigned at = offsetOf(variable.getLocation());
  return at >= offsetOf(range.getBegin()) && at <= offsetOf(range.getEnd());
}

bool DifferingValues::touch(const clang::Expr *expr, const Region &region) {
  if (!expr)
    return false;
  const ExpressionFacts &facts = out.expressions.factsOf(*expr);
  const bool differs = out.differs(*expr);
  for (const clang::VarDecl *variable : facts.writes) {
    if (differs ||
        (region.isCopied && !isDeclaredIn(*variable, region.copiedRange)))
      makeDiffer(*variable);
  }
  if (!sharesLocalMemory()) {
    if (facts.storesLocal && (differs || region.isCopied || region.block))
      storeDiffering();
    for (const clang::VarDecl *variable : facts.writes)
      if (region.block && isLocal(*variable) &&
          isUsedAfter(*variable, region.block->getSourceRange()))
        makeDiffer(*variable);
  }
  if (waits(*expr))
    for (const clang::VarDecl *variable : facts.writes)
      makeWaiting(*variable);
  return differs;
}

// A pointer that differs stores to local memory: any of it may differ then.
void DifferingValues::storeDiffering() {
  for (const clang::VarDecl *variable : localAddressed)
    makeDiffer(*variable);
  if (hasLocalArgument)
    out.verdict.refuse(Reason::LocalArgument);
}

bool DifferingValues::waits(const clang::Expr &expr) const {
  const ExpressionFacts &facts = out.expressions.factsOf(expr);
  return facts.waits || llvm::any_of(facts.reads, [this](const auto *v) {
           return waiting.count(v) != 0;
         });
}

void DifferingValues::makeWaiting(const clang::VarDecl &variable) {
  waiting.insert(&variable);
}

bool DifferingValues::isUsedAfter(const clang::VarDecl &variable,
                                  clang::SourceRange range) const {
  bool used = false;
  const unsigned end = offsetOf(range.getEnd());
  forEachNode(kernel.getBody(), [&](const clang::Stmt &node) {
    const auto *name = llvm::dyn_cast<clang::DeclRefExpr>(&node);
    used |= name && name->getDecl() == &variable &&
            offsetOf(name->getLocation()) > end;
  });
  return used;
}

} // namespace corvane::coarsening
