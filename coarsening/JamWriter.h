// Writes a kernel's body for all lanes: what they share once, the rest for
// each.
#pragma once

#include "coarsening/LaneText.h"

namespace corvane::coarsening {

class JamWriter {
public:
  /// `labels` counts the labels of the variant.
  JamWriter(const clang::FunctionDecl &function, const Variance &differences,
            const Plan &wanted, LaneText &text, unsigned &labels)
      : kernel(function), variance(differences), plan(wanted), lanes(text),
        labelCount(labels) {}

  /// The kernel's local memory: a declaration for each lane where its contents
  /// differ. Belongs to the beginning of the variant.
  std::string localMemory();
  /// All other statements.
  std::string body();

private:
  using Statements = llvm::ArrayRef<clang::Stmt *>;

  std::string from(size_t first);
  std::string jam(const clang::Stmt &statement);
  std::string jamDeclaration(const clang::DeclStmt &statement);
  std::string jamIf(const clang::IfStmt &branch);
  std::string jamFor(const clang::ForStmt &loop);
  std::string jamEach(const clang::Expr &expr, llvm::StringRef separator);
  std::string guarded(const Guard &guard, const clang::IfStmt &branch,
                      const std::string &together,
                      llvm::function_ref<std::string(const Voice &)> alone);
  std::string copies(Statements statements);
  std::string copy(const Voice &voice,
                   llvm::function_ref<std::string(const Voice &)> write);
  std::string plain(Statements statements, const Voice &voice);

  const clang::FunctionDecl &kernel;
  const Variance &variance;
  const Plan &plan;
  LaneText &lanes;
  unsigned &labelCount;
  unsigned guardCount = 0;
  std::string loopHint; ///< written before the next loop
};

/// Whether the statement declares local memory, and nothing else.
bool declaresLocal(const clang::Stmt &statement);

} // namespace corvane::coarsening
