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
      if (const auto *expr = llvm::dyn_cast<clang::Expr>(&node))
        match(*expr);
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

  /// An expression that multiplies two others and adds a third.
  struct ProductSum {
    const clang::Expr *first;
    const clang::Expr *second;
    const clang::Expr *added;
  };

  /// The arguments of a call of OpenCL's function \p name.
  static llvm::ArrayRef<const clang::Expr *>
  argumentsOf(const clang::Expr &expr, llvm::StringRef name) {
    const auto *call = llvm::dyn_cast<clang::CallExpr>(&expr);
    const clang::FunctionDecl *called =
        call ? call->getDirectCallee() : nullptr;
    if (!called || called->hasBody() || !called->getIdentifier() ||
        called->getName() != name)
      return {};
    return {call->getArgs(), call->getNumArgs()};
  }

  /// The factors of a product, or nothing.
  static llvm::SmallVector<const clang::Expr *, 2>
  factorsOf(const clang::Expr &expr) {
    const auto *product = llvm::dyn_cast<clang::BinaryOperator>(&expr);
    if (product && product->getOpcode() == clang::BO_Mul)
      return {product->getLHS(), product->getRHS()};
    const auto arguments = argumentsOf(expr, "mul24");
    return {arguments.begin(), arguments.end()};
  }

  /// Every way to see an expression as such a sum.
  llvm::SmallVector<ProductSum, 2> sumsIn(const clang::Expr &expr) const {
    llvm::SmallVector<ProductSum, 2> sums;
    if (const auto all = argumentsOf(expr, "mad24"); all.size() == 3)
      sums.push_back({all[0], all[1], all[2]});
    const auto *sum = llvm::dyn_cast<clang::BinaryOperator>(&expr);
    if (!sum || sum->getOpcode() != clang::BO_Add)
      return sums;
    for (const bool turned : {false, true}) {
      const clang::Expr &left = turned ? *sum->getRHS() : *sum->getLHS();
      const clang::Expr &right = turned ? *sum->getLHS() : *sum->getRHS();
      const auto factors = factorsOf(*bare(left));
      if (factors.size() == 2)
        sums.push_back({factors[0], factors[1], &right});
    }
    return sums;
  }

  void match(const clang::Expr &expr) {
    if (!expr.getType()->isIntegerType())
      return;
    for (const ProductSum &sum : sumsIn(expr)) {
      std::optional<Leaf> group = leafOf(*sum.first);
      std::optional<Leaf> size = leafOf(*sum.second);
      const std::optional<Leaf> local = leafOf(*sum.added);
      if (!group || !size || !local)
        continue;
      if (group->use.kind != BuiltinKind::GroupId)
        std::swap(group, size);
      if (group->use.kind != BuiltinKind::GroupId ||
          size->use.kind != BuiltinKind::LocalSize ||
          local->use.kind != BuiltinKind::LocalId ||
          group->use.dim != size->use.dim || group->use.dim != local->use.dim)
        continue;
      result.forms[&expr] = group->use.dim;
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
