// Finds calls of functions with barriers, and puts the bodies in their places.
#include "coarsening/Inline.h"

#include "coarsening/ProgramText.h"
#include "coarsening/TextEnds.h"
#include "coarsening/Walk.h"

namespace corvane::coarsening {

namespace {

using NameSet = std::set<std::string>;

/// The names of everything that a function declares inside itself.
NameSet namesInside(const clang::FunctionDecl &function) {
  NameSet names;
  for (const clang::ParmVarDecl *parameter : function.parameters())
    names.insert(parameter->getNameAsString());
  forEachNode(function.getBody(), [&](const clang::Stmt &node) {
    if (const auto *statement = llvm::dyn_cast<clang::DeclStmt>(&node))
      for (const clang::Decl *declared : statement->decls())
        if (const auto *named = llvm::dyn_cast<clang::NamedDecl>(declared))
          names.insert(named->getNameAsString());
  });
  return names;
}

/// The identifiers in a text that are no members of something.
NameSet identifiersOf(llvm::StringRef text) {
  NameSet names;
  const auto letter = [](char c) {
    return clang::isAsciiIdentifierContinue(static_cast<unsigned char>(c));
  };
  for (size_t at = 0; at < text.size();) {
    if (!letter(text[at])) {
      at = text[at] == '"' || text[at] == '\'' ? behindLiteral(text, at)
                                               : at + 1;
      continue;
    }
    const llvm::StringRef word = text.drop_front(at).take_while(letter);
    const llvm::StringRef before = text.take_front(at).rtrim();
    if (!endsWith(before, ".") && !endsWith(before, "->"))
      names.insert(word.str());
    at += word.size();
  }
  return names;
}

class Inliner {
public:
  explicit Inliner(const clang::ASTContext &ast)
      : context(ast), text(ast), mark(unusedLetters(text.all())) {}

  std::optional<std::string> run() {
    for (const clang::Decl *declared :
         context.getTranslationUnitDecl()->decls()) {
      const auto *function = llvm::dyn_cast<clang::FunctionDecl>(declared);
      if (!function || !function->doesThisDeclarationHaveABody())
        continue;
      caller = function;
      visit(*function->getBody());
    }
    if (edits.empty() || text.sawForeignText())
      return std::nullopt;
    const auto size = static_cast<unsigned>(text.all().size());
    return text.edited({0, size}, std::move(edits));
  }

private:
  /// Goes through the statements that hold others, to those that do not.
  void visit(const clang::Stmt &statement) {
    if (llvm::isa<clang::Expr>(statement) ||
        llvm::isa<clang::DeclStmt>(statement) ||
        llvm::isa<clang::ReturnStmt>(statement))
      return visitSimple(statement);
    for (const clang::Stmt *child : statement.children()) {
      // A condition or a loop's step is no statement of its own.
      const bool part = child && llvm::isa<clang::Expr>(child) &&
                        !isBodyOf(statement, *child);
      const bool first =
          child && llvm::isa<clang::ForStmt>(statement) &&
          llvm::cast<clang::ForStmt>(statement).getInit() == child;
      if (child && !part && !first)
        visit(*child);
    }
  }

  static bool isBodyOf(const clang::Stmt &statement, const clang::Stmt &child) {
    if (llvm::isa<clang::CompoundStmt>(statement))
      return true;
    if (const auto *branch = llvm::dyn_cast<clang::IfStmt>(&statement))
      return &child == branch->getThen() || &child == branch->getElse();
    if (const auto *loop = llvm::dyn_cast<clang::ForStmt>(&statement))
      return &child == loop->getBody();
    if (const auto *loop = llvm::dyn_cast<clang::WhileStmt>(&statement))
      return &child == loop->getBody();
    if (const auto *loop = llvm::dyn_cast<clang::DoStmt>(&statement))
      return &child == loop->getBody();
    return false;
  }

  /// The call of a statement that can be replaced: all that it does, or the
  /// value that it stores.
  static const clang::CallExpr *callIn(const clang::Stmt &statement) {
    const clang::Expr *expr = llvm::dyn_cast<clang::Expr>(&statement);
    if (const auto *result = llvm::dyn_cast<clang::ReturnStmt>(&statement))
      expr = result->getRetValue();
    if (const auto *declaration = llvm::dyn_cast<clang::DeclStmt>(&statement)) {
      const auto *variable =
          declaration->isSingleDecl()
              ? llvm::dyn_cast<clang::VarDecl>(declaration->getSingleDecl())
              : nullptr;
      expr = variable ? variable->getInit() : nullptr;
    }
    if (!expr)
      return nullptr;
    expr = expr->IgnoreParenImpCasts();
    const auto *store = llvm::dyn_cast<clang::BinaryOperator>(expr);
    if (store && store->isAssignmentOp())
      expr = store->getRHS()->IgnoreParenImpCasts();
    return llvm::dyn_cast<clang::CallExpr>(expr);
  }

  bool hasBarrier(const clang::CallExpr &call) {
    const clang::FunctionDecl *called = calledFunction(call);
    return called && functions.factsOf(*called).barrier;
  }

  void visitSimple(const clang::Stmt &statement) {
    const clang::CallExpr *call = callIn(statement);
    if (!call || !hasBarrier(*call))
      return;
    unsigned barriers = 0;
    forEachNode(&statement, [&](const clang::Stmt &node) {
      const auto *inner = llvm::dyn_cast<clang::CallExpr>(&node);
      barriers += inner && hasBarrier(*inner) ? 1 : 0;
    });
    const clang::FunctionDecl &called = *calledFunction(*call);
    if (barriers == 1 && canBeWritten(called))
      replace(statement, *call, called);
  }

  /// Whether a body may stand in the caller's.
  bool canBeWritten(const clang::FunctionDecl &called) {
    if (functions.factsOf(called).refusal || &called == caller ||
        called.hasAttr<clang::OpenCLKernelAttr>() || called.isVariadic())
      return false;
    const auto *body = llvm::cast<clang::CompoundStmt>(called.getBody());
    bool early = false;
    forEachNode(body, [&](const clang::Stmt &node) {
      early |= llvm::isa<clang::ReturnStmt>(node) && &node != lastOf(*body);
    });
    const bool value = !called.getReturnType()->isVoidType();
    const bool returns =
        lastOf(*body) && llvm::isa<clang::ReturnStmt>(lastOf(*body));
    if (early || value != returns)
      return false;
    const NameSet own = namesInside(called), callers = namesInside(*caller);
    for (const std::string &name :
         identifiersOf(text.words(text.spanOf(*body))))
      if (!own.count(name) && callers.count(name))
        return false;
    return true;
  }

  static const clang::Stmt *lastOf(const clang::CompoundStmt &body) {
    return body.body_empty() ? nullptr : body.body_back();
  }

  std::string declare(clang::QualType type, const std::string &name) const {
    type.removeLocalConst();
    type.removeLocalRestrict();
    type = context.removeAddrSpaceQualType(type);
    std::string words;
    llvm::raw_string_ostream stream(words);
    type.print(stream, clang::PrintingPolicy(context.getLangOpts()), name);
    return stream.str();
  }

  /// Arguments get new names first: those of the parameters may hide names that
  /// the arguments use.
  std::string bodyFor(const clang::CallExpr &call,
                      const clang::FunctionDecl &called,
                      const std::string &result) {
    std::string outer, inner;
    for (unsigned i = 0; i < called.getNumParams(); ++i) {
      const clang::ParmVarDecl &parameter = *called.getParamDecl(i);
      const std::string argument = fresh("argument");
      outer += declare(parameter.getType(), argument) + " = " +
               text.words(text.spanOf(*call.getArg(i))).str() + ";\n";
      if (parameter.getIdentifier())
        inner += declare(parameter.getType(), parameter.getNameAsString()) +
                 " = " + argument + ";\n";
    }
    const auto *body = llvm::cast<clang::CompoundStmt>(called.getBody());
    const Span all = text.spanOf(*body);
    Span span{all.begin + 1, all.end - 1};
    std::string last;
    if (!result.empty()) {
      const auto *end = llvm::cast<clang::ReturnStmt>(lastOf(*body));
      span.end = text.spanOf(*end).begin;
      last = result + " = " +
             text.words(text.spanOf(*end->getRetValue())).str() + ";\n";
    }
    return "{\n" + outer + "{\n" + inner + text.words(span).str() + "\n" +
           last + "}\n}\n";
  }

  std::string fresh(llvm::StringRef what) {
    return mark + "_" + what.str() + std::to_string(count++);
  }

  /// With its semicolon, which must not be left in front of an `else`.
  Span wholeOf(const clang::Stmt &statement) const {
    Span span = text.spanOf(statement);
    if (!llvm::isa<clang::DeclStmt>(statement))
      span.end = text.find(';', span.end) + 1;
    return span;
  }

  void replace(const clang::Stmt &statement, const clang::CallExpr &call,
               const clang::FunctionDecl &called) {
    if (called.getReturnType()->isVoidType()) {
      edits.push_back({wholeOf(statement), bodyFor(call, called, "")});
      return;
    }
    const std::string result = fresh("result");
    const std::string body = declare(called.getReturnType(), result) + ";\n" +
                             bodyFor(call, called, result);
    const Span whole = wholeOf(statement);
    const std::string words = text.edited(whole, {{text.spanOf(call), result}});
    // A declaration has to stay where the statements after it see it.
    if (llvm::isa<clang::DeclStmt>(statement))
      edits.push_back({whole, body + words});
    else
      edits.push_back({whole, "{\n" + body + words + "\n}\n"});
  }

  const clang::ASTContext &context;
  const ProgramText text;
  const std::string mark;
  FunctionTable functions;
  const clang::FunctionDecl *caller = nullptr;
  std::vector<Edit> edits;
  unsigned count = 0;
};

} // namespace

std::optional<std::string> inlineBarriers(const clang::ASTContext &context) {
  return Inliner(context).run();
}

} // namespace corvane::coarsening
