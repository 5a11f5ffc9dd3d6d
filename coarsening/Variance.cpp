// Answers what differs between lanes, from what the walks have found.
#include "coarsening/Variance.h"

#include "llvm/Support/raw_ostream.h"

namespace corvane::coarsening {

llvm::ArrayRef<clang::Stmt *> statementsOf(const clang::FunctionDecl &kernel) {
  const auto *body = llvm::cast<clang::CompoundStmt>(kernel.getBody());
  return {body->body_begin(), body->body_end()};
}

bool onlyReturns(const clang::IfStmt &statement) {
  if (statement.getElse() || statement.getInit())
    return false;
  const clang::Stmt *then = statement.getThen();
  if (const auto *block = llvm::dyn_cast<clang::CompoundStmt>(then)) {
    if (block->size() != 1)
      return false;
    then = block->body_front();
  }
  return llvm::isa<clang::ReturnStmt>(then);
}

bool Variance::differs(const clang::Expr &expr) const {
  const ExpressionFacts &facts = expressions.factsOf(expr);
  const auto own = [this](const clang::VarDecl *v) { return differs(*v); };
  return facts.differs || llvm::any_of(facts.reads, own);
}

const Guard *Variance::guardOf(const clang::Stmt &statement) const {
  const auto found = guards.find(&statement);
  return found == guards.end() ? nullptr : &found->second;
}

bool Variance::differsInside(const clang::Stmt *statement) const {
  if (!statement)
    return false;
  if (const auto *expr = llvm::dyn_cast<clang::Expr>(statement))
    return differs(*expr);
  if (isCopied(*statement) || guardOf(*statement))
    return true;
  if (const auto *block = llvm::dyn_cast<clang::DeclStmt>(statement))
    for (const clang::Decl *declared : block->decls())
      if (const auto *variable = llvm::dyn_cast<clang::VarDecl>(declared))
        if (differs(*variable))
          return true;
  return llvm::any_of(statement->children(), [this](const clang::Stmt *child) {
    return differsInside(child);
  });
}

std::string Variance::describe() const {
  const clang::SourceManager &sources =
      kernel.getASTContext().getSourceManager();
  std::string text;
  llvm::raw_string_ostream out(text);
  std::map<unsigned, std::string> lines;
  for (const clang::VarDecl *variable : variables)
    lines[sources.getFileOffset(variable->getLocation())] =
        "differs: " + variable->getNameAsString() + "\n";
  for (const auto &[offset, line] : lines)
    out << line;
  const auto lineOf = [&](const clang::Stmt *statement) {
    return sources.getSpellingLineNumber(statement->getBeginLoc());
  };
  std::set<unsigned> copies;
  for (const clang::Stmt *statement : copied)
    copies.insert(lineOf(statement));
  for (const unsigned line : copies)
    out << "copied: line " << line << "\n";
  std::set<unsigned> guardLines;
  for (const auto &[statement, guard] : guards)
    guardLines.insert(lineOf(statement));
  for (const unsigned line : guardLines)
    out << "guard: line " << line << "\n";
  if (tailBegin < statementsOf(kernel).size())
    out << "copied to the end: from line "
        << lineOf(statementsOf(kernel)[tailBegin]) << "\n";
  return out.str();
}

} // namespace corvane::coarsening
