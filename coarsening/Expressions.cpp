// Collects the facts of an expression in one walk over it.
#include "coarsening/Expressions.h"

namespace corvane::coarsening {

bool Expressions::differs(const IdUse &use) const {
  if (!wanted.axisOf(use.dim))
    return false;
  switch (use.kind) {
  case BuiltinKind::GlobalId:
    return true;
  case BuiltinKind::LocalId:
    return wanted.mode == Mode::Local;
  case BuiltinKind::GroupId:
    return wanted.mode != Mode::Local;
  default:
    return false;
  }
}

namespace {

class ExpressionCollector {
public:
  ExpressionCollector(const clang::ASTContext &ast, Expressions &all)
      : context(ast), expressions(all) {}

  void visit(const clang::Stmt &node) {
    if (const auto *element = llvm::dyn_cast<clang::ArraySubscriptExpr>(&node))
      return visitElement(*element);
    if (const std::optional<unsigned> dim =
            expressions.functions().globalIdForm(node))
      if (expressions.isRewritten({BuiltinKind::GlobalId, *dim})) {
        facts.differs = true;
        return;
      }
    visitNode(node);
    visitChildren(node);
  }

  ExpressionFacts facts;

private:
  void visitChildren(const clang::Stmt &node) {
    for (const clang::Stmt *child : node.children())
      if (child)
        visit(*child);
  }

  void visitNode(const clang::Stmt &node) {
    bool readsFirst = false;
    if (const clang::Expr *changed = changedBy(node, readsFirst))
      change(*changed, readsFirst);
    if (const auto *name = llvm::dyn_cast<clang::DeclRefExpr>(&node))
      readName(*name);
    else if (const auto *unary = llvm::dyn_cast<clang::UnaryOperator>(&node))
      visitUnary(*unary);
    else if (const auto *member = llvm::dyn_cast<clang::MemberExpr>(&node))
      follow(member->isArrow(), *member->getBase());
    else if (const auto *part =
                 llvm::dyn_cast<clang::ExtVectorElementExpr>(&node))
      follow(part->isArrow(), *part->getBase());
    else if (const auto *cast = llvm::dyn_cast<clang::CastExpr>(&node))
      visitCast(*cast);
    else if (const auto *call = llvm::dyn_cast<clang::CallExpr>(&node))
      visitCall(*call);
    else if (llvm::isa<clang::AtomicExpr>(node))
      count(), passMemory(node);
  }

  /// An element of a named array is a piece of that variable; its address goes
  /// nowhere else.
  void visitElement(const clang::ArraySubscriptExpr &element) {
    const clang::Expr *base = element.getBase()->IgnoreParens();
    const auto *cast = llvm::dyn_cast<clang::ImplicitCastExpr>(base);
    if (cast && cast->getCastKind() == clang::CK_ArrayToPointerDecay) {
      visit(*cast->getSubExpr());
    } else {
      follow(base->getType()->isPointerType(), *base);
      visit(*base);
    }
    noteVolatile(element);
    visit(*element.getIdx());
  }

  void readName(const clang::DeclRefExpr &name) {
    if (const auto *variable = llvm::dyn_cast<clang::VarDecl>(name.getDecl()))
      facts.reads.push_back(variable);
    noteVolatile(name);
  }

  void visitUnary(const clang::UnaryOperator &unary) {
    if (unary.getOpcode() == clang::UO_AddrOf)
      takeAddress(*unary.getSubExpr());
    else if (unary.getOpcode() == clang::UO_Deref)
      follow(true, *unary.getSubExpr());
  }

  void visitCast(const clang::CastExpr &cast) {
    if (cast.getCastKind() == clang::CK_ArrayToPointerDecay)
      takeAddress(*cast.getSubExpr());
  }

  void takeAddress(const clang::Expr &lvalue) {
    if (const clang::VarDecl *variable = namedVariable(lvalue))
      facts.addressed.push_back(variable);
  }

  void change(const clang::Expr &lvalue, bool readsFirst) {
    clang::QualType pointee;
    if (const clang::VarDecl *variable = namedVariable(lvalue, &pointee)) {
      facts.writes.push_back(variable);
      return;
    }
    facts.differs |= readsFirst || pointee.isNull();
    facts.storesLocal |= pointee.isNull() || mayBeLocal(pointee);
  }

  void follow(bool pointer, const clang::Expr &base) {
    if (!pointer)
      return;
    const clang::QualType pointee = base.getType()->getPointeeType();
    if (pointee.isNull()) {
      facts.differs = true;
      return;
    }
    noteVolatile(pointee);
    facts.loadsLocal |= mayBeLocal(pointee);
    facts.differs |= isGeneric(pointee);
  }

  static bool isGeneric(clang::QualType pointee) {
    const clang::LangAS space = pointee.getAddressSpace();
    return space != clang::LangAS::opencl_global &&
           space != clang::LangAS::opencl_constant &&
           space != clang::LangAS::opencl_local &&
           space != clang::LangAS::opencl_private;
  }
  static bool mayBeLocal(clang::QualType pointee) {
    return pointee.getAddressSpace() == clang::LangAS::opencl_local ||
           isGeneric(pointee);
  }

  void noteVolatile(const clang::Expr &lvalue) {
    noteVolatile(lvalue.getType());
  }
  void noteVolatile(clang::QualType type) {
    if (!type.isVolatileQualified())
      return;
    count();
    facts.volatileLocal |=
        type.getAddressSpace() == clang::LangAS::opencl_local;
  }

  void count() { facts.differs = facts.waits = true; }

  /// The memory that pointers among the children lead to may be read and
  /// written.
  void passMemory(const clang::Stmt &node, bool stores = true) {
    for (const clang::Stmt *child : node.children()) {
      const auto *expr = llvm::dyn_cast_or_null<clang::Expr>(child);
      if (!expr || !expr->getType()->isPointerType())
        continue;
      const clang::QualType pointee = expr->getType()->getPointeeType();
      if (pointee->isFunctionType())
        continue;
      facts.differs |= isGeneric(pointee);
      facts.loadsLocal |= mayBeLocal(pointee);
      facts.storesLocal |= stores && mayBeLocal(pointee);
    }
  }

  void visitCall(const clang::CallExpr &call) {
    if (const clang::FunctionDecl *called = calledFunction(call)) {
      const FunctionFacts &function = expressions.functions().factsOf(*called);
      for (const IdUse &use : function.ids)
        facts.differs |= expressions.differs(use);
      facts.differs |= function.counted;
      facts.waits |= function.waits;
      return passMemory(call);
    }
    const BuiltinKind kind = builtinKind(call);
    if (const std::optional<IdUse> use = idUseOf(call, context))
      facts.differs |= expressions.differs(*use);
    facts.barrier |= kind == BuiltinKind::Barrier;
    if (kind == BuiltinKind::Atomic)
      count();
    passMemory(call, kind != BuiltinKind::Load);
  }

  const clang::ASTContext &context;
  Expressions &expressions;
};

} // namespace

const ExpressionFacts &Expressions::factsOf(const clang::Expr &expr) {
  const auto found = known.find(&expr);
  if (found != known.end())
    return found->second;
  ExpressionCollector collector(context, *this);
  collector.visit(expr);
  return known.emplace(&expr, std::move(collector.facts)).first->second;
}

} // namespace corvane::coarsening
