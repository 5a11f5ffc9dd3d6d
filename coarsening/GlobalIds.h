// Finds expressions that work out the global id from group, size and local id.
#pragma once

#include "coarsening/ClangHeaders.h"

namespace corvane::coarsening {

/// The expressions of one function that have the value of
/// `get_global_id(d) - get_global_offset(d)`, in whatever integer type.
struct GlobalIdForms {
  /// `get_group_id(d) * get_local_size(d) + get_local_id(d)` in any order, also
  /// by mad24 and mul24, to d. A variable that holds one of the three and never
  /// changes counts as well.
  std::map<const clang::Expr *, unsigned> forms;
  /// Calls whose values go into such expressions and nowhere else.
  std::set<const clang::CallExpr *> spent;
};

GlobalIdForms findGlobalIds(const clang::FunctionDecl &function);

} // namespace corvane::coarsening
