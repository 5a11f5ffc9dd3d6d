// Collects the facts of a function from its body.
#include "coarsening/FunctionFacts.h"

#include "coarsening/GlobalIds.h"
#include "coarsening/Walk.h"

namespace corvane::coarsening {

const clang::FunctionDecl *calledFunction(const clang::CallExpr &call) {
  const clang::FunctionDecl *callee = call.getDirectCallee();
  const clang::FunctionDecl *definition = nullptr;
  if (callee && callee->hasBody(definition))
    return definition;
  return nullptr;
}

BuiltinKind builtinKind(const clang::CallExpr &call) {
  const clang::FunctionDecl *callee = call.getDirectCallee();
  return callee && callee->getIdentifier() ? builtinKind(callee->getName())
                                           : BuiltinKind::Plain;
}

std::optional<IdUse> idUseOf(const clang::CallExpr &call,
                             const clang::ASTContext &context) {
  const BuiltinKind kind = builtinKind(call);
  clang::Expr::EvalResult value;
  if (calledFunction(call) || !isDimensional(kind) || call.getNumArgs() != 1 ||
      !call.getArg(0)->EvaluateAsInt(value, context))
    return std::nullopt;
  const llvm::APSInt dim = value.Val.getInt();
  const bool small = dim.getActiveBits() <= 16 && !dim.isNegative();
  return IdUse{kind, small ? static_cast<unsigned>(dim.getZExtValue()) : 3U};
}

std::vector<const clang::VarDecl *>
inOrder(const std::set<const clang::VarDecl *> &variables) {
  std::vector<const clang::VarDecl *> ordered(variables.begin(),
                                              variables.end());
  llvm::sort(ordered, [](const clang::VarDecl *a, const clang::VarDecl *b) {
    return a->getLocation() < b->getLocation();
  });
  return ordered;
}

bool isLocal(const clang::VarDecl &variable) {
  clang::QualType type = variable.getType();
  while (const clang::ArrayType *array = type->getAsArrayTypeUnsafe()) {
    if (type.getAddressSpace() == clang::LangAS::opencl_local)
      return true;
    type = array->getElementType();
  }
  return type.getAddressSpace() == clang::LangAS::opencl_local;
}

const clang::VarDecl *namedVariable(const clang::Expr &lvalue,
                                    clang::QualType *pointee) {
  const clang::Expr *expr = lvalue.IgnoreParenImpCasts();
  const auto leadTo = [&](clang::QualType type) {
    if (pointee)
      *pointee = type;
    return nullptr;
  };
  if (const auto *name = llvm::dyn_cast<clang::DeclRefExpr>(expr))
    return llvm::dyn_cast<clang::VarDecl>(name->getDecl());
  if (const auto *member = llvm::dyn_cast<clang::MemberExpr>(expr)) {
    const clang::Expr &base = *member->getBase();
    return member->isArrow() ? leadTo(base.getType()->getPointeeType())
                             : namedVariable(base, pointee);
  }
  if (const auto *part = llvm::dyn_cast<clang::ExtVectorElementExpr>(expr)) {
    const clang::Expr &base = *part->getBase();
    return part->isArrow() ? leadTo(base.getType()->getPointeeType())
                           : namedVariable(base, pointee);
  }
  if (const auto *element = llvm::dyn_cast<clang::ArraySubscriptExpr>(expr)) {
    const clang::Expr *base = element->getBase()->IgnoreParens();
    if (base->getType()->isVectorType())
      return namedVariable(*base, pointee);
    const auto *cast = llvm::dyn_cast<clang::ImplicitCastExpr>(base);
    if (cast && cast->getCastKind() == clang::CK_ArrayToPointerDecay)
      return namedVariable(*cast->getSubExpr(), pointee);
    return leadTo(base->getType()->getPointeeType());
  }
  if (const auto *deref = llvm::dyn_cast<clang::UnaryOperator>(expr))
    if (deref->getOpcode() == clang::UO_Deref)
      return leadTo(deref->getSubExpr()->getType()->getPointeeType());
  return leadTo(clang::QualType());
}

const clang::Expr *changedBy(const clang::Stmt &node, bool &readsFirst) {
  if (const auto *binary = llvm::dyn_cast<clang::BinaryOperator>(&node)) {
    readsFirst = binary->isCompoundAssignmentOp();
    return binary->isAssignmentOp() ? binary->getLHS() : nullptr;
  }
  if (const auto *unary = llvm::dyn_cast<clang::UnaryOperator>(&node)) {
    readsFirst = true;
    return unary->isIncrementDecrementOp() ? unary->getSubExpr() : nullptr;
  }
  return nullptr;
}

void FunctionFacts::include(const FunctionFacts &called) {
  ids.insert(called.ids.begin(), called.ids.end());
  barrier |= called.barrier;
  counted |= called.counted;
  waits |= called.waits;
  loops |= called.loops;
  if (!refusal)
    refusal = called.refusal;
}

/// The reason not to touch a function that calls a builtin of this kind.
static std::optional<Reason> reasonAgainst(BuiltinKind kind) {
  switch (kind) {
  case BuiltinKind::LinearId:
    return Reason::LinearId;
  case BuiltinKind::Collective:
    return Reason::Collective;
  case BuiltinKind::SubGroup:
    return Reason::SubGroup;
  case BuiltinKind::AsyncCopy:
    return Reason::AsyncCopy;
  case BuiltinKind::Pipe:
    return Reason::Pipe;
  case BuiltinKind::DeviceQueue:
    return Reason::DeviceQueue;
  case BuiltinKind::Printf:
    return Reason::Printf;
  default:
    return std::nullopt;
  }
}

/// Whether the compiler itself declared the function, for OpenCL programs.
static bool isDeclaredByCompiler(const clang::FunctionDecl &function) {
  if (!function.isImplicit() || function.getBuiltinID() != 0)
    return false;
  return true;
}

namespace {

/// Collects the facts of one body.
class FactCollector {
public:
  FactCollector(FunctionTable &functions, const clang::ASTContext &ast,
                const GlobalIdForms &globalIds)
      : table(functions), context(ast), forms(globalIds) {
    for (const auto &[expr, dim] : forms.forms)
      facts.ids.insert({BuiltinKind::GlobalId, dim});
  }

  FunctionFacts collect(const clang::Stmt &body) {
    forEachNode(&body, [this](const clang::Stmt &node) { visit(node); });
    facts.refusal = verdict.refusal();
    return std::move(facts);
  }

private:
  void visit(const clang::Stmt &node) {
    refuseStatements(node);
    noteVolatile(node);
    facts.loops |= llvm::isa<clang::ForStmt>(node) ||
                   llvm::isa<clang::WhileStmt>(node) ||
                   llvm::isa<clang::DoStmt>(node);
    bool readsFirst = false;
    if (const clang::Expr *changed = changedBy(node, readsFirst))
      facts.counted |= readsFirst && !namedVariable(*changed);
    if (llvm::isa<clang::AtomicExpr>(node))
      facts.counted = facts.waits = true;
    if (const auto *call = llvm::dyn_cast<clang::CallExpr>(&node))
      visitCall(*call);
    if (const auto *declaration = llvm::dyn_cast<clang::DeclStmt>(&node))
      visitDeclaration(*declaration);
    if (const auto *name = llvm::dyn_cast<clang::DeclRefExpr>(&node))
      visitName(*name);
  }

  void refuseStatements(const clang::Stmt &node) {
    if (llvm::isa<clang::LabelStmt>(node) ||
        llvm::isa<clang::IndirectGotoStmt>(node))
      verdict.refuse(Reason::Goto);
    if (llvm::isa<clang::AsmStmt>(node))
      verdict.refuse(Reason::InlineAssembly);
    if (llvm::isa<clang::StmtExpr>(node))
      verdict.refuse(Reason::StatementExpression);
    if (llvm::isa<clang::BlockExpr>(node))
      verdict.refuse(Reason::DeviceQueue);
  }

  void noteVolatile(const clang::Stmt &node) {
    const auto *expr = llvm::dyn_cast<clang::Expr>(&node);
    if (expr && expr->isGLValue() && expr->getType().isVolatileQualified())
      facts.counted = facts.waits = true;
  }

  void visitCall(const clang::CallExpr &call) {
    const clang::FunctionDecl *callee = call.getDirectCallee();
    if (!callee)
      return verdict.refuse(Reason::IndirectCall);
    if (const clang::FunctionDecl *definition = calledFunction(call)) {
      if (definition->hasAttr<clang::OpenCLKernelAttr>())
        verdict.refuse(Reason::CallsKernel, definition->getName());
      const FunctionFacts &called = table.factsOf(*definition);
      verdict.refuse(called.refusal);
      if (called.barrier)
        verdict.refuse(Reason::BarrierInHelper, definition->getName());
      if (called.waits && called.loops)
        verdict.refuse(Reason::AtomicLoop, definition->getName());
      return facts.include(called);
    }
    visitBuiltin(call, *callee);
  }

  void visitBuiltin(const clang::CallExpr &call,
                    const clang::FunctionDecl &callee) {
    const BuiltinKind kind = builtinKind(call);
    const std::string name = callee.getNameAsString();
    if (const std::optional<Reason> reason = reasonAgainst(kind))
      return verdict.refuse(*reason, name);
    if (!isDeclaredByCompiler(callee))
      return verdict.refuse(Reason::UnknownFunction, name);
    facts.barrier |= kind == BuiltinKind::Barrier;
    if (kind == BuiltinKind::Atomic)
      facts.counted = facts.waits = true;
    if (!isDimensional(kind))
      return;
    const std::optional<IdUse> use = idUseOf(call, context);
    if (!use)
      return verdict.refuse(Reason::ComputedDimension, name);
    if (!forms.spent.count(&call))
      facts.ids.insert(*use);
  }

  void visitDeclaration(const clang::DeclStmt &statement) {
    for (const clang::Decl *declared : statement.decls()) {
      const auto *variable = llvm::dyn_cast<clang::VarDecl>(declared);
      if (!variable)
        continue;
      const bool constant = variable->getType().getAddressSpace() ==
                            clang::LangAS::opencl_constant;
      if (variable->isStaticLocal() && !isLocal(*variable) && !constant)
        verdict.refuse(Reason::StaticVariable, variable->getName());
    }
  }

  void visitName(const clang::DeclRefExpr &name) {
    const auto *variable = llvm::dyn_cast<clang::VarDecl>(name.getDecl());
    if (!variable || !variable->hasGlobalStorage() ||
        variable->isStaticLocal() || isLocal(*variable))
      return;
    const clang::QualType element =
        context.getBaseElementType(variable->getType());
    const bool constant =
        element.getAddressSpace() == clang::LangAS::opencl_constant ||
        variable->getType().getAddressSpace() == clang::LangAS::opencl_constant;
    if (!constant && !element.isConstQualified())
      verdict.refuse(Reason::ProgramVariable, variable->getName());
  }

  FunctionTable &table;
  const clang::ASTContext &context;
  const GlobalIdForms &forms;
  FunctionFacts facts;
  Verdict verdict;
};

} // namespace

const FunctionFacts &
FunctionTable::factsOf(const clang::FunctionDecl &function) {
  const auto known = facts.find(&function);
  if (known != facts.end())
    return known->second;
  static const FunctionFacts recursive = [] {
    FunctionFacts refused;
    refused.refusal = Refusal{Reason::Recursion, ""};
    return refused;
  }();
  if (!unfinished.insert(&function).second)
    return recursive;
  const GlobalIdForms forms = findGlobalIds(function);
  globalIds.insert(forms.forms.begin(), forms.forms.end());
  FactCollector collector(*this, function.getASTContext(), forms);
  FunctionFacts collected = collector.collect(*function.getBody());
  unfinished.erase(&function);
  return facts.emplace(&function, std::move(collected)).first->second;
}

std::optional<unsigned>
FunctionTable::globalIdForm(const clang::Stmt &node) const {
  const auto found = globalIds.find(&node);
  return found == globalIds.end() ? std::nullopt : std::optional(found->second);
}

} // namespace corvane::coarsening
