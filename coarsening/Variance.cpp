// Repeats a walk over the kernel until nothing more is found to differ.
//
// Everything starts as shared by all lanes. A walk finds values that differ,
// through them variables and branches, and through those more values. Nothing
// is ever taken back, so the walks come to an end.
#include "coarsening/Variance.h"

#include "coarsening/Walk.h"

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

/// Where a walk is.
struct Variance::Place {
  struct Loop {
    const clang::Stmt *statement;
    bool copiedInside; ///< what is being walked is copied, the loop may not be
  };
  /// The piece of text that is copied for each lane, or an empty range.
  clang::SourceRange copiedRange;
  bool isCopied = false;
  /// Every lane that comes here comes once, so an `if` here can be a guard.
  bool mayGuard = true;
  /// The outermost `if` around it that is a guard, or null. Lanes that do not
  /// take it go on after it.
  const clang::Stmt *block = nullptr;
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

/// One kernel's walks.
class VarianceWalk {
public:
  VarianceWalk(Variance &result, const clang::FunctionDecl &function)
      : out(result), kernel(function),
        sources(function.getASTContext().getSourceManager()) {}

  void run() {
    out.tailBegin = statementsOf(kernel).size();
    takeStock();
    do {
      changed = false;
      out.guards.clear();
      walkBody();
    } while (changed && !out.verdict.refused());
  }

private:
  using Place = Variance::Place;

  bool sharesLocalMemory() const { return out.plan.mode == Mode::Local; }
  bool isProgramWide(const clang::VarDecl &variable) const {
    return variable.hasGlobalStorage() && !isLocal(variable);
  }

  /// Variables whose address is taken: what a pointer does to them is not seen,
  /// so each lane has its own from the start. Local ones wait until something
  /// is stored through a pointer that differs.
  void takeStock() {
    forEachNode(kernel.getBody(), [this](const clang::Stmt &node) {
      const auto *expr = llvm::dyn_cast<clang::Expr>(&node);
      if (!expr)
        return;
      const ExpressionFacts &facts = out.expressions.factsOf(*expr);
      for (const clang::VarDecl *variable : facts.addressed)
        if (isLocal(*variable))
          localAddressed.insert(variable);
        else
          makeDiffer(*variable);
      if (facts.volatileLocal && sharesLocalMemory())
        out.verdict.refuse(Reason::VolatileLocal);
    });
    for (const clang::ParmVarDecl *parameter : kernel.parameters()) {
      const clang::QualType type = parameter->getType();
      hasLocalArgument |=
          type->isPointerType() && type->getPointeeType().getAddressSpace() ==
                                       clang::LangAS::opencl_local;
    }
  }

  void makeDiffer(const clang::VarDecl &variable) {
    if (isProgramWide(variable) || (sharesLocalMemory() && isLocal(variable)))
      return;
    changed |= out.variables.insert(&variable).second;
  }
  void makeCopied(const clang::Stmt &statement) {
    changed |= out.copied.insert(&statement).second;
  }

  unsigned offsetOf(clang::SourceLocation at) const {
    return sources.getFileOffset(sources.getFileLoc(at));
  }
  bool isDeclaredIn(const clang::VarDecl &variable,
                    clang::SourceRange range) const {
    if (llvm::isa<clang::ParmVarDecl>(variable))
      return false;
    const unsigned at = offsetOf(variable.getLocation());
    return at >= offsetOf(range.getBegin()) && at <= offsetOf(range.getEnd());
  }

  // Expressions.

  /// Whether the expression differs; what it changes then does, too.
  bool touch(const clang::Expr *expr, const Place &place) {
    if (!expr)
      return false;
    const ExpressionFacts &facts = out.expressions.factsOf(*expr);
    const bool differs = out.differs(*expr);
    if (facts.barrier)
      meetBarrier(*expr, place);
    for (const clang::VarDecl *variable : facts.writes) {
      if (differs ||
          (place.isCopied && !isDeclaredIn(*variable, place.copiedRange)))
        makeDiffer(*variable);
    }
    if (!sharesLocalMemory()) {
      if (facts.storesLocal && (differs || place.isCopied || place.block))
        storeDiffering();
      for (const clang::VarDecl *variable : facts.writes)
        if (place.block && isLocal(*variable) &&
            isUsedAfter(*variable, place.block->getSourceRange()))
          makeDiffer(*variable);
    }
    if (waits(*expr))
      for (const clang::VarDecl *variable : facts.writes)
        makeWaiting(*variable);
    return differs;
  }

  void meetBarrier(const clang::Expr &expr, const Place &place) {
    if (place.isCopied)
      out.verdict.refuse(Reason::BarrierDiverges);
    if (!llvm::isa<clang::CallExpr>(expr.IgnoreParens()))
      out.verdict.refuse(Reason::BarrierInExpression);
    for (const clang::Stmt *guard : guardStack)
      out.guards[guard].barrier = true;
  }

  /// Something that differs goes to local memory, no one knows where.
  void storeDiffering() {
    for (const clang::VarDecl *variable : localAddressed)
      makeDiffer(*variable);
    if (hasLocalArgument)
      out.verdict.refuse(Reason::LocalArgument);
  }

  /// Whether the value comes from an atomic or volatile access.
  bool waits(const clang::Expr &expr) const {
    const ExpressionFacts &facts = out.expressions.factsOf(expr);
    return facts.waits || llvm::any_of(facts.reads, [this](const auto *v) {
             return waiting.count(v) != 0;
           });
  }
  void makeWaiting(const clang::VarDecl &variable) {
    changed |= waiting.insert(&variable).second;
  }

  // Statements.

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
        makeDiffer(*variable);
      if (waits(*variable->getInit()))
        makeWaiting(*variable);
    }
  }

  void walkIf(const clang::IfStmt &branch, Place place) {
    const bool differs = touch(branch.getCond(), place);
    if (waits(*branch.getCond()) && !place.loops.empty() && leaves(branch))
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
            isProgramWide(*variable) || isDeclaredIn(*variable, range))
          return;
        // Lanes that did not take the region have the old value afterwards.
        if (variable->getType()->isArrayType() || isUsedAfter(*variable, range))
          makeDiffer(*variable);
        else
          shadows.insert(variable);
      });
    out.guards[&guard].shadows = std::move(shadows);
  }

  bool isUsedAfter(const clang::VarDecl &variable, clang::SourceRange range) {
    bool used = false;
    const unsigned end = offsetOf(range.getEnd());
    forEachNode(kernel.getBody(), [&](const clang::Stmt &node) {
      const auto *name = llvm::dyn_cast<clang::DeclRefExpr>(&node);
      used |= name && name->getDecl() == &variable &&
              offsetOf(name->getLocation()) > end;
    });
    return used;
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
    if (parts.cond && waits(*parts.cond))
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
      if (returnsAlone && i < out.tailBegin) {
        out.tailBegin = i;
        changed = true;
      }
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
  const clang::SourceManager &sources;
  std::set<const clang::VarDecl *> localAddressed;
  std::set<const clang::VarDecl *> waiting; ///< hold what waits() was true for
  std::vector<const clang::Stmt *> guardStack;
  bool hasLocalArgument = false;
  bool changed = false;
  bool returnsAlone = false;
};

Variance::Variance(const clang::FunctionDecl &function, Expressions &all,
                   const Plan &wanted)
    : kernel(function), expressions(all), plan(wanted) {
  VarianceWalk(*this, function).run();
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
