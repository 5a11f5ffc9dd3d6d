// The facts of functions: what each does, itself and through those that it
// calls.
#pragma once

#include "coarsening/BuiltinFunctions.h"
#include "coarsening/ClangHeaders.h"
#include "coarsening/Reason.h"

namespace corvane::coarsening {

/// An id or a size in one dimension.
struct IdUse {
  BuiltinKind kind;
  unsigned dim;
  bool operator<(const IdUse &other) const {
    return std::tie(dim, kind) < std::tie(other.dim, other.kind);
  }
};

struct FunctionFacts {
  std::set<IdUse> ids;
  bool barrier = false;
  /// It has atomics, volatile accesses, or changes memory to a value that
  /// depends on the old one: running it twice does not do what running it once
  /// does.
  bool counted = false;
  bool waits = false; ///< it has atomics or volatile accesses
  bool loops = false;
  std::optional<Refusal> refusal; ///< why no variant can be made at all

  void include(const FunctionFacts &called);
};

/// The facts of the functions of one program, worked out once for each.
class FunctionTable {
public:
  /// The function must have a body. The reference is good for as long as the
  /// table.
  const FunctionFacts &factsOf(const clang::FunctionDecl &function);

  /// The dimension of an expression that works out a global id, in a function
  /// whose facts were asked for.
  std::optional<unsigned> globalIdForm(const clang::Stmt &node) const;

private:
  std::map<const clang::FunctionDecl *, FunctionFacts> facts;
  std::set<const clang::FunctionDecl *> unfinished;
  std::map<const clang::Stmt *, unsigned> globalIds;
};

/// The function with a body that a call reaches, or null.
const clang::FunctionDecl *calledFunction(const clang::CallExpr &call);
/// The kind of a call that reaches none of the program's functions.
BuiltinKind builtinKind(const clang::CallExpr &call);
/// What a call of an id or size function asks for; nothing for other calls and
/// computed dimensions.
std::optional<IdUse> idUseOf(const clang::CallExpr &call,
                             const clang::ASTContext &context);

/// Whether the lvalue is a piece of a named variable; the variable, or null for
/// what a pointer leads to. `pointee` is then the type of what it leads to.
const clang::VarDecl *namedVariable(const clang::Expr &lvalue,
                                    clang::QualType *pointee = nullptr);

/// What an expression changes, or null: the left side of an assignment, or what
/// is incremented. `readsFirst` tells whether the old value matters.
const clang::Expr *changedBy(const clang::Stmt &node, bool &readsFirst);

/// The variables in the order in which the program declares them.
std::vector<const clang::VarDecl *>
inOrder(const std::set<const clang::VarDecl *> &variables);

/// Whether this is a variable, or an array of them, in local memory.
bool isLocal(const clang::VarDecl &variable);

} // namespace corvane::coarsening
