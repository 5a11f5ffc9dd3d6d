// Visits the nodes of a syntax tree.
#pragma once

#include "coarsening/ClangHeaders.h"

namespace corvane::coarsening {

/// Calls `visit` for `root` and everything inside it, outer nodes first. Null
/// is an empty tree. Goes into initialisers of declared variables, not into the
/// functions that are called.
inline void forEachNode(const clang::Stmt *root,
                        llvm::function_ref<void(const clang::Stmt &)> visit) {
  if (!root)
    return;
  visit(*root);
  for (const clang::Stmt *child : root->children())
    forEachNode(child, visit);
}

} // namespace corvane::coarsening
