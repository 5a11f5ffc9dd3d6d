// Finds the branches that return at their end, and puts what follows them into
// the other branch.
#include "coarsening/EarlyReturns.h"

#include "coarsening/JamWriter.h"
#include "coarsening/ProgramText.h"
#include "coarsening/Walk.h"

namespace corvane::coarsening {

/// The last statement of a branch that works, returns, and has no other way
/// out; null for any other statement.
static const clang::ReturnStmt *endOfWork(const clang::Stmt &statement) {
  const auto *branch = llvm::dyn_cast<clang::IfStmt>(&statement);
  const auto *then =
      branch ? llvm::dyn_cast<clang::CompoundStmt>(branch->getThen()) : nullptr;
  if (!then || branch->getElse() || branch->getInit() || then->size() < 2)
    return nullptr;
  const auto *end = llvm::dyn_cast<clang::ReturnStmt>(then->body_back());
  bool returnsEarlier = false;
  forEachNode(then, [&](const clang::Stmt &node) {
    returnsEarlier |= llvm::isa<clang::ReturnStmt>(node) && &node != end;
  });
  return returnsEarlier ? nullptr : end;
}

/// Local memory can only be declared in the outermost scope.
static bool declareLocal(llvm::ArrayRef<clang::Stmt *> statements) {
  return llvm::any_of(statements, [](const clang::Stmt *statement) {
    return declaresLocal(*statement);
  });
}

static void rewrite(const clang::FunctionDecl &kernel, const ProgramText &text,
                    std::vector<Edit> &edits) {
  const llvm::ArrayRef<clang::Stmt *> body = statementsOf(kernel);
  std::string closing;
  for (size_t i = 0; i < body.size(); ++i) {
    const clang::ReturnStmt *end = endOfWork(*body[i]);
    if (!end || declareLocal(body.drop_front(i)))
      continue;
    edits.push_back({text.spanOf(*end), ""});
    if (i + 1 == body.size())
      break;
    const unsigned after = text.spanOf(*body[i]).end;
    edits.push_back({{after, after}, " else {"});
    closing += "}\n";
  }
  const unsigned last = text.spanOf(*kernel.getBody()).end - 1;
  if (!closing.empty())
    edits.push_back({{last, last}, closing});
}

std::optional<std::string>
withoutEarlyReturns(const clang::ASTContext &context) {
  const ProgramText text(context);
  std::vector<Edit> edits;
  for (const clang::Decl *declared :
       context.getTranslationUnitDecl()->decls()) {
    const auto *function = llvm::dyn_cast<clang::FunctionDecl>(declared);
    if (function && function->hasAttr<clang::OpenCLKernelAttr>() &&
        function->doesThisDeclarationHaveABody())
      rewrite(*function, text, edits);
  }
  if (edits.empty() || text.sawForeignText())
    return std::nullopt;
  const auto size = static_cast<unsigned>(text.all().size());
  return text.edited({0, size}, std::move(edits));
}

} // namespace corvane::coarsening
