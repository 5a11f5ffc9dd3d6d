// What differs between the work-items of a kernel that become one.
#pragma once

#include "coarsening/Expressions.h"

namespace corvane::coarsening {

/// An `if` that the variant asks once for all lanes together: where all take
/// it, its body is jammed; otherwise each lane has a copy of its own.
struct Guard {
  /// Variables that the lanes share in the jammed body, and that a lane changes
  /// in its copy: it needs one of its own there.
  std::set<const clang::VarDecl *> shadows;
  bool barrier = false; ///< so each work-group as a whole takes it or does not
};

/// The result of the analysis of one kernel under one plan.
class Variance {
public:
  /// Works everything out. Check the verdict before anything else is used.
  Variance(const clang::FunctionDecl &kernel, Expressions &expressions,
           const Plan &plan);

  const std::optional<Refusal> &refusal() const { return verdict.refusal(); }

  /// Whether each lane has a variable of its own.
  bool differs(const clang::VarDecl &variable) const {
    return variables.count(&variable) != 0;
  }
  bool differs(const clang::Expr &expr) const;
  /// Whether the statement is written once for each lane, as a whole.
  bool isCopied(const clang::Stmt &statement) const {
    return copied.count(&statement) != 0;
  }
  const Guard *guardOf(const clang::Stmt &statement) const;
  /// Whether anything inside the statement is written more than once.
  bool differsInside(const clang::Stmt *statement) const;

  /// The first of the kernel's own statements from which on everything is
  /// copied, because a lane may have returned; their number if there is none.
  size_t tail() const { return tailBegin; }

  /// The findings as lines of text, for people.
  std::string describe() const;

private:
  friend class DifferingValues;
  friend class VarianceWalk;

  const clang::FunctionDecl &kernel;
  Expressions &expressions;
  const Plan &plan;
  Verdict verdict;
  std::set<const clang::VarDecl *> variables;
  std::set<const clang::Stmt *> copied;
  std::map<const clang::Stmt *, Guard> guards;
  size_t tailBegin = 0;
};

/// Whether the `if` does nothing but end the work-item.
bool onlyReturns(const clang::IfStmt &statement);

/// The statements of a kernel's body.
llvm::ArrayRef<clang::Stmt *> statementsOf(const clang::FunctionDecl &kernel);

} // namespace corvane::coarsening
