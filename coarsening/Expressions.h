// The facts of expressions: what each reads and changes, and whether it differs
// between work-items.
#pragma once

#include "coarsening/FunctionFacts.h"
#include "coarsening/Plan.h"

namespace corvane::coarsening {

/// The facts of one expression, everything inside it included.
struct ExpressionFacts {
  using Variables = llvm::SmallVector<const clang::VarDecl *, 4>;
  Variables reads;     ///< named at all
  Variables writes;    ///< changed by name
  Variables addressed; ///< their address is taken
  /// It has to be done by each work-item by itself, whatever the variables
  /// hold: it asks for an id that differs, counts, or follows a pointer that
  /// may lead into private memory.
  bool differs = false;
  bool barrier = false;
  bool waits = false;       ///< it has atomics or volatile accesses
  bool loadsLocal = false;  ///< through a pointer to local memory
  bool storesLocal = false; ///< through a pointer to local memory
  bool volatileLocal = false;
};

/// The facts of a kernel's expressions under one plan, worked out once for
/// each.
class Expressions {
public:
  Expressions(const clang::ASTContext &ast, FunctionTable &functions,
              const Plan &plan)
      : context(ast), table(functions), wanted(plan) {}

  /// The reference is good for as long as this object.
  const ExpressionFacts &factsOf(const clang::Expr &expr);

  /// Whether what the function gives differs between work-items that become
  /// one.
  bool differs(const IdUse &use) const;
  /// Whether a variant asks for it by another expression.
  bool isRewritten(const IdUse &use) const {
    return wanted.axisOf(use.dim) != nullptr;
  }
  FunctionTable &functions() { return table; }

private:
  const clang::ASTContext &context;
  FunctionTable &table;
  const Plan &wanted;
  std::map<const clang::Expr *, ExpressionFacts> known;
};

} // namespace corvane::coarsening
