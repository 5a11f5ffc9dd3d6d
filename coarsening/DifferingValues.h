// The variables whose values differ between lanes.
#pragma once

#include "coarsening/Variance.h"

namespace corvane::coarsening {

/// What is known of the statement that an expression belongs to.
struct Region {
  /// The piece of text that is copied for each lane, or an empty range.
  clang::SourceRange copiedRange;
  bool isCopied = false;
  /// The outermost `if` around it that is a guard, or null. Lanes that do not
  /// take it go on after it.
  const clang::Stmt *block = nullptr;
};

/// Follows values from expressions to variables: what is given a value that
/// differs, differs. A variable that differs stays so.
class DifferingValues {
public:
  DifferingValues(Variance &result, const clang::FunctionDecl &function)
      : out(result), kernel(function),
        sources(function.getASTContext().getSourceManager()) {}

  /// Finds the variables whose address is taken. What a pointer does to them is
  /// not seen, so each lane has its own from the start. Local ones wait until
  /// something is stored through a pointer that differs.
  void findAddressed();

  /// Whether the expression differs; what it changes then does, too. Null is no
  /// expression.
  bool touch(const clang::Expr *expr, const Region &region);
  void makeDiffer(const clang::VarDecl &variable);

  /// Whether the value comes from an atomic or volatile access.
  bool waits(const clang::Expr &expr) const;
  void makeWaiting(const clang::VarDecl &variable);

  /// Whether there is one such variable for all work-items of the program.
  bool isProgramWide(const clang::VarDecl &variable) const {
    return variable.hasGlobalStorage() && !isLocal(variable);
  }
  bool isDeclaredIn(const clang::VarDecl &variable,
                    clang::SourceRange range) const;
  bool isUsedAfter(const clang::VarDecl &variable,
                   clang::SourceRange range) const;

  /// How many facts have been found so far.
  size_t count() const { return out.variables.size() + waiting.size(); }

private:
  bool sharesLocalMemory() const { return out.plan.mode == Mode::Local; }
  unsigned offsetOf(clang::SourceLocation at) const {
    return sources.getFileOffset(sources.getFileLoc(at));
  }
  void storeDiffering();

  Variance &out;
  const clang::FunctionDecl &kernel;
  const clang::SourceManager &sources;
  std::set<const clang::VarDecl *> localAddressed;
  std::set<const clang::VarDecl *> waiting; ///< hold what waits() was true for
  bool hasLocalArgument = false;
};

} // namespace corvane::coarsening
