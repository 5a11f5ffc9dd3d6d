// Walks over a kernel's statements until nothing more is found to differ.
//
// Everything starts as shared by all lanes. A walk finds values that differ,
// through them variables and branches, and through those more values. Nothing
// is ever taken back, so the walks come to an end.
#include "coarsening/DifferingValues.h"
#include "coarsening/Variance.h"
#include "coarsening/Walk.h"

namespace corvane::coarsening {

namespace {

/// Where a walk is.
struct Place : Region {
  struct Loop {
    const clang::Stmt *statement;
    bool copiedInside; ///< what is being walked is copied, the loop may not be
  };
  /// Every lane that comes here comes once, so an `if` here can be a guard.
  bool mayGuard = true;
  llvm::SmallVector<Loop, 4> loops;

  void copyFrom(clang::SourceRange range) {
    if (!isCopied)
      copiedRange = range;
    isCopied = true;
    mayGuard = false;
    for (Loop &loop : loops)
      loop.copiedInside = true;
  }
};

} // namespace

/// Finds the statements of one kernel that are copied, and its guards.
class VarianceWalk {
public:
  VarianceWalk(Variance &result, const clang::FunctionDecl &function)
      : out(result), kernel(function), values(result, function) {}

  void run() {
    out.tailBegin = statementsOf(kernel).size();
    values.findAddressed();
    size_t known = 0;
    do {
      known = factCount();
      out.guards.clear();
      walkBody();
    } while (factCount() != known && !out.verdict.refused());
  }

private:
  /// Grows with each fact that a walk finds; the walks end when it does not.
  size_t factCount() const {
    const size_t copiedAtEnd = statementsOf(kernel).size() - out.tailBegin;
    return values.count() + out.copied.size() + copiedAtEnd;
  }
  void makeCopied(const clang::Stmt &statement) {
    out.copied.insert(&statement);
  }

  /// Whether the expression differs; what it changes then does, too.
  bool touch(const clang::Expr *expr, const Place &place) {
    if (expr && out.expressions.factsOf(*expr).barrier)
      meetBarrier(*expr, place);
    return values.touch(expr, place);
  }

  void meetBarrier(const clang::Expr &expr, const Place &place) {
    if (place.isCopied)
      out.verdict.refuse(Reason::BarrierDiverges);
    if (!llvm::isa<clang::CallExpr>(expr.IgnoreParens()))
      out.verdict.refuse(Reason::BarrierInExpression);
    for (const clang::Stmt *guard : guardStack)
      out.guards[guard].barrier = true;
  }

  void walk(const clang::Stmt *statement, Place place) {
    if (!statement || out.verdict.refused())
      return;
    if (const auto *expr = llvm::dyn_cast<clang::Expr>(statement))
      touch(expr, place);
    else if (const auto *declaration =
                 llvm::dyn_cast<clang::DeclStmt>(statement))
      walkDeclaration(*declaration, place);
    else if (const auto *block = llvm::dyn_cast<clang::CompoundStmt>(statement))
      for (const clang::Stmt *child : block->body())
        walk(child, place);
    else if (const auto *branch = llvm::dyn_cast<clang::IfStmt>(statement))
      walkIf(*branch, place);
    else if (const auto *choice = llvm::dyn_cast<clang::SwitchStmt>(statement))
      walkSwitch(*choice, place);
    else if (const auto *label = llvm::dyn_cast<clang::SwitchCase>(statement))
      walk(label->getSubStmt(), place);
    else if (const auto *marked =
                 llvm::dyn_cast<clang::AttributedStmt>(statement))
      walk(marked->getSubStmt(), place);
    else if (llvm::isa<clang::ForStmt>(statement) ||
             llvm::isa<clang::WhileStmt>(statement) ||
             llvm::isa<clang::DoStmt>(statement))
      walkLoop(*statement, place);
    else if (llvm::isa<clang::BreakStmt>(statement))
      leaveLoop(place, /*switches=*/true);
    else if (llvm::isa<clang::ContinueStmt>(statement))
      leaveLoop(place, /*switches=*/false);
    else if (llvm::isa<clang::ReturnStmt>(statement))
      leaveKernel(place);
    else if (!llvm::isa<clang::NullStmt>(statement))
      out.verdict.refuse(Reason::UnknownStatement,
                         statement->getStmtClassName());
  }

  void walkDeclaration(const clang::DeclStmt &statement, const Place &place) {
    for (const clang::Decl *declared : statement.decls()) {
      const auto *variable = llvm::dyn_cast<clang::VarDecl>(declared);
      if (!variable || !variable->getInit())
        continue;
      if (touch(variable->getInit(), place))
        values.makeDiffer(*variable);
      if (values.waits(*variable->getInit()))
        values.makeWaiting(*variable);
    }
  }

  void walkIf(const clang::IfStmt &branch, Place place) {
    const bool differs = touch(branch.getCond(), place);
    if (values.waits(*branch.getCond()) && !place.loops.empty() &&
        leaves(branch))
      out.verdict.refuse(Reason::AtomicLoop);
    if (differs && place.mayGuard && !out.isCopied(branch))
      return walkGuard(branch, place);
    if (differs && !place.isCopied)
      makeCopied(branch);
    if (out.isCopied(branch))
      place.copyFrom(branch.getSourceRange());
    // A lane comes here once only where all come together.
    place.mayGuard = false;
    walk(branch.getThen(), place);
    walk(branch.getElse(), place);
  }

  /// An `if` that some lanes may take, and usually all take together.
  void walkGuard(const clang::IfStmt &branch, Place place) {
    out.guards[&branch];
    guardStack.push_back(&branch);
    if (!place.block)
      place.block = &branch;
    walk(branch.getThen(), place);
    walk(branch.getElse(), place);
    giveShadows(branch, {branch.getThen(), branch.getElse()},
                branch.getSourceRange());
    guardStack.pop_back();
  }

  /// What a guarded region changes and lanes share so far.
  void giveShadows(const clang::Stmt &guard,
                   llvm::ArrayRef<const clang::Stmt *> region,
                   clang::SourceRange range) {
    std::set<const clang::VarDecl *> shadows;
    for (const clang::Stmt *statement : region)
      forEachNode(statement, [&](const clang::Stmt &node) {
        bool readsFirst = false;
        const clang::Expr *target = changedBy(node, readsFirst);
        const clang::VarDecl *variable =
            target ? namedVariable(*target) : nullptr;
        if (!variable || out.differs(*variable) || isLocal(*variable) ||
            values.isProgramWide(*variable) ||
            values.isDeclaredIn(*variable, range))
          return;
        // Lanes that did not take the region have the old value afterwards.
        if (variable->getType()->isArrayType() ||
            values.isUsedAfter(*variable, range))
          values.makeDiffer(*variable);
        else
          shadows.insert(variable);
      });
    out.guards[&guard].shadows = std::move(shadows);
  }

  /// Whether it may end a loop around it.
  static bool leaves(const clang::IfStmt &branch) {
    bool found = false;
    forEachNode(&branch, [&](const clang::Stmt &node) {
      found |= llvm::isa<clang::BreakStmt>(node) ||
               llvm::isa<clang::ContinueStmt>(node) ||
               llvm::isa<clang::ReturnStmt>(node);
    });
    return found;
  }

  void walkSwitch(const clang::SwitchStmt &choice, Place place) {
    const bool differs = touch(choice.getCond(), place);
    // Its labels cannot be written twice, so a body that differs is copied
    // whole.
    if (differs || out.differsInside(choice.getBody()))
      makeCopied(choice);
    if (out.isCopied(choice))
      place.copyFrom(choice.getSourceRange());
    place.mayGuard = false;
    place.loops.push_back({&choice, out.isCopied(choice)});
    walk(choice.getBody(), place);
  }

  void walkLoop(const clang::Stmt &loop, Place place) {
    place.mayGuard = false;
    const Parts parts = partsOf(loop);
    const Place outside = place;
    if (parts.init)
      walk(parts.init, place);
    if (parts.cond && values.waits(*parts.cond))
      out.verdict.refuse(Reason::AtomicLoop);
    if (parts.cond && touch(parts.cond, outside) && !place.isCopied)
      makeCopied(loop);
    if (out.isCopied(loop))
      place.copyFrom(loop.getSourceRange());
    place.loops.push_back({&loop, out.isCopied(loop)});
    if (out.isCopied(loop)) {
      walk(parts.init, place);
      touch(parts.cond, place);
    }
    walk(parts.body, place);
    touchEach(parts.step, place);
  }

  struct Parts {
    const clang::Stmt *init = nullptr;
    const clang::Expr *cond = nullptr;
    const clang::Expr *step = nullptr;
    const clang::Stmt *body = nullptr;
  };
  static Parts partsOf(const clang::Stmt &loop) {
    if (const auto *counted = llvm::dyn_cast<clang::ForStmt>(&loop))
      return {counted->getInit(), counted->getCond(), counted->getInc(),
              counted->getBody()};
    if (const auto *first = llvm::dyn_cast<clang::WhileStmt>(&loop))
      return {nullptr, first->getCond(), nullptr, first->getBody()};
    const auto *last = llvm::cast<clang::DoStmt>(&loop);
    return {nullptr, last->getCond(), nullptr, last->getBody()};
  }

  /// The steps of a loop, separated by commas, differ each by itself.
  void touchEach(const clang::Expr *step, const Place &place) {
    if (!step)
      return;
    const auto *pair =
        llvm::dyn_cast<clang::BinaryOperator>(step->IgnoreParens());
    if (!pair || pair->getOpcode() != clang::BO_Comma) {
      touch(step, place);
      return;
    }
    touchEach(pair->getLHS(), place);
    touchEach(pair->getRHS(), place);
  }

  // Ways out.

  /// A lane that ends a loop alone needs the whole loop for itself.
  void leaveLoop(const Place &place, bool switches) {
    for (const Place::Loop &loop : llvm::reverse(place.loops)) {
      if (!switches && llvm::isa<clang::SwitchStmt>(loop.statement))
        continue;
      if (loop.copiedInside)
        makeCopied(*loop.statement);
      return;
    }
  }

  /// A lane that returns alone needs the rest of the kernel for itself.
  void leaveKernel(const Place &place) {
    for (const Place::Loop &loop : place.loops)
      if (loop.copiedInside)
        makeCopied(*loop.statement);
    if (place.isCopied || place.block)
      returnsAlone = true;
  }

  void walkBody() {
    const llvm::ArrayRef<clang::Stmt *> body = statementsOf(kernel);
    const clang::SourceRange all = kernel.getBody()->getSourceRange();
    Place place;
    std::vector<const clang::IfStmt *> open;
    for (size_t i = 0; i < body.size(); ++i) {
      if (i == out.tailBegin)
        place.copyFrom({body[i]->getBeginLoc(), all.getEnd()});
      const auto *branch = llvm::dyn_cast<clang::IfStmt>(body[i]);
      if (branch && place.mayGuard && onlyReturns(*branch) &&
          touch(branch->getCond(), place)) {
        out.guards[branch];
        guardStack.push_back(branch);
        open.push_back(branch);
        continue;
      }
      returnsAlone = false;
      walk(body[i], place);
      if (returnsAlone && i < out.tailBegin)
        out.tailBegin = i;
    }
    for (const clang::IfStmt *guard : open)
      closeGuard(*guard);
    guardStack.clear();
  }

  /// A guard that returns: its region is all that follows it.
  void closeGuard(const clang::IfStmt &guard) {
    const llvm::ArrayRef<clang::Stmt *> body = statementsOf(kernel);
    const auto *at = llvm::find(body, &guard);
    const std::vector<const clang::Stmt *> region(at + 1, body.end());
    giveShadows(guard, region,
                {guard.getEndLoc(), kernel.getBody()->getEndLoc()});
  }

  Variance &out;
  const clang::FunctionDecl &kernel;
  DifferingValues values;
  std::vector<const clang::Stmt *> guardStack;
  bool returnsAlone = false;
};

Variance::Variance(const clang::FunctionDecl &function, Expressions &all,
                   const Plan &wanted)
    : kernel(function), expressions(all), plan(wanted) {
  VarianceWalk(*this, function).run();
}

} // namespace corvane::coarsening
