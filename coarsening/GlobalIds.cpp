// Matches sums of products, also where their parts are in variables that never
// change.
#include "coarsening/GlobalIds.h"

#include "coarsening/FunctionFacts.h"
#include "coarsening/Walk.h"

namespace corvane::coarsening {

namespace {

class Finder {
public:
  explicit Finder(const clang::FunctionDecl &searched)
      : function(searched), context(searched.getASTContext()) {}

  GlobalIdForms find() {
    forEachNode(function.getBody(),
                [this](const clang::Stmt &node) { recordUses(node); });
    forEachNode(function.getBody(), [this](const clang::Stmt &node) {
      if (const auto *sum = llvm::dyn_cast<clang::BinaryOperator>(&node))
        match(*sum);
    });
    // If the variable is used nowhere else, the call in it is not either.
    for (const auto &[variable, uses] : spentUses)
      if (uses == allUses[variable])
        if (const clang::CallExpr *call = callIn(*variable->getInit()))
          result.spent.insert(call);
    return std::move(result);
  }

private:
  /// A call of an id or size function, and the variable it went through.
  struct Leaf {
    IdUse use;
    const clang::CallExpr *call;
    const clang::VarDecl *variable; ///< or null
  };

  void recordUses(const clang::Stmt &node) {
    bool readsFirst = false;
    const clang::Expr *changed = changedBy(node, readsFirst);
    if (const auto *unary = llvm::dyn_cast<clang::UnaryOperator>(&node))
      if (unary->getOpcode() == clang::UO_AddrOf)
        changed = unary->getSubExpr();
    if (changed)
      if (const clang::VarDecl *variable = namedVariable(*changed))
        changing.insert(variable);
    if (const auto *name = llvm::dyn_cast<clang::DeclRefExpr>(&node))
      if (const auto *variable =
              llvm::dyn_cast<clang::VarDecl>(name->getDecl()))
        ++allUses[variable];
  }

  /// Without brackets and conversions that keep at least 32 bits of an integer.
  const clang::Expr *bare(const clang::Expr &expr) const {
    const clang::Expr *inner = expr.IgnoreParens();
    while (const auto *cast = llvm::dyn_cast<clang::CastExpr>(inner)) {
      const clang::QualType type = cast->getType();
      const bool keeps = cast->getCastKind() == clang::CK_LValueToRValue ||
                         cast->getCastKind() == clang::CK_NoOp ||
                         (cast->getCastKind() == clang::CK_IntegralCast &&
                          context.getTypeSize(type) >= 32);
      if (!keeps)
        break;
      inner = cast->getSubExpr()->IgnoreParens();
    }
    return inner;
  }

  const clang::CallExpr *callIn(const clang::Expr &expr) const {
    return llvm::dyn_cast<clang::CallExpr>(bare(expr));
  }

  std::optional<Leaf> leafOf(const clang::Expr &expr) const {
    if (const clang::CallExpr *call = callIn(expr))
      if (const std::optional<IdUse> use = idUseOf(*call, context))
        return Leaf{*use, call, nullptr};
    const auto *name = llvm::dyn_cast<clang::DeclRefExpr>(bare(expr));
    const auto *variable =
        name ? llvm::dyn_cast<clang::VarDecl>(name->getDecl()) : nullptr;
    if (!variable || !variable->isLocalVarDecl() || !variable->getInit() ||
        changing.count(variable) || !variable->getType()->isIntegerType() ||
        context.getTypeSize(variable->getType()) < 32)
      return std::nullopt;
    const clang::CallExpr *call = callIn(*variable->getInit());
    const std::optional<IdUse> use =
        call ? idUseOf(*call, context) : std::nullopt;
    return use ? std::optional(Leaf{*use, call, variable}) : std::nullopt;
  }

  void match(const clang::BinaryOperator &sum) {
    if (sum.getOpcode() != clang::BO_Add || !sum.getType()->isIntegerType())
      return;
    for (const bool turned : {false, true}) {
      const clang::Expr &left = turned ? *sum.getRHS() : *sum.getLHS();
      const clang::Expr &right = turned ? *sum.getLHS() : *sum.getRHS();
      const auto *product = llvm::dyn_cast<clang::BinaryOperator>(bare(left));
      if (!product || product->getOpcode() != clang::BO_Mul)
        continue;
      std::optional<Leaf> group = leafOf(*product->getLHS());
      std::optional<Leaf> size = leafOf(*product->getRHS());
      const std::optional<Leaf> local = leafOf(right);
      if (!group || !size || !local)
        continue;
      if (group->use.kind != BuiltinKind::GroupId)
        std::swap(group, size);
      if (group->use.kind != BuiltinKind::GroupId ||
          size->use.kind != BuiltinKind::LocalSize ||
          local->use.kind != BuiltinKind::LocalId ||
          group->use.dim != size->use.dim || group->use.dim != local->use.dim)
        continue;
      result.forms[&sum] = group->use.dim;
      for (const Leaf &leaf : {*group, *size, *local})
        if (leaf.variable)
          ++spentUses[leaf.variable];
        else
          result.spent.insert(leaf.call);
      return;
    }
  }

  const clang::FunctionDecl &function;
  const clang::ASTContext &context;
  GlobalIdForms result;
  std::set<const clang::VarDecl *> changing;
  std::map<const clang::VarDecl *, unsigned> allUses, spentUses;
};

} // namespace

GlobalIdForms findGlobalIds(const clang::FunctionDecl &function) {
  return Finder(function).find();
}

} // namespace corvane::coarsening
