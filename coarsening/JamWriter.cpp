// Jams one statement after the other, as the kernel's Variance has decided.
#include "coarsening/JamWriter.h"

namespace corvane::coarsening {

bool declaresLocal(const clang::Stmt &statement) {
  const auto *declaration = llvm::dyn_cast<clang::DeclStmt>(&statement);
  return declaration &&
         llvm::all_of(declaration->decls(), [](const clang::Decl *declared) {
           const auto *variable = llvm::dyn_cast<clang::VarDecl>(declared);
           return variable && isLocal(*variable);
         });
}

std::string JamWriter::localMemory() {
  std::string words;
  for (const clang::Stmt *statement : statementsOf(kernel))
    if (declaresLocal(*statement))
      words += jam(*statement);
  return words;
}

std::string JamWriter::body() {
  std::string words;
  for (const clang::ParmVarDecl *parameter : kernel.parameters())
    if (variance.differs(*parameter))
      for (unsigned lane = 0; lane < plan.lanes(); ++lane)
        words +=
            lanes.copyOf(*parameter, lanes.nameOf(*parameter, Voice::of(lane)));
  return words + from(0);
}

/// The kernel's own statements from one on.
std::string JamWriter::from(size_t first) {
  const Statements statements = statementsOf(kernel);
  std::string words;
  for (size_t i = first; i < statements.size(); ++i) {
    const clang::Stmt &statement = *statements[i];
    if (i == variance.tail())
      return words + copies(statements.drop_front(i));
    if (declaresLocal(statement))
      continue;
    const auto *branch = llvm::dyn_cast<clang::IfStmt>(&statement);
    const Guard *guard = branch ? variance.guardOf(statement) : nullptr;
    if (!guard || !onlyReturns(*branch)) {
      words += jam(statement);
      continue;
    }
    const std::string together = from(i + 1);
    return words + guarded(*guard, *branch, together, [&](const Voice &voice) {
             return plain(statements.drop_front(i + 1), voice);
           });
  }
  return words;
}

std::string JamWriter::jam(const clang::Stmt &statement) {
  const std::string hint = std::exchange(loopHint, "");
  if (!variance.differsInside(&statement))
    return hint + lanes.statement(statement, Voice());
  if (variance.isCopied(statement)) {
    clang::Stmt *only = const_cast<clang::Stmt *>(&statement);
    return copies(only);
  }
  if (const auto *block = llvm::dyn_cast<clang::CompoundStmt>(&statement)) {
    std::string words = "{\n";
    for (const clang::Stmt *child : block->body())
      words += jam(*child);
    return words + "}\n";
  }
  if (const auto *declaration = llvm::dyn_cast<clang::DeclStmt>(&statement))
    return jamDeclaration(*declaration);
  if (const auto *expr = llvm::dyn_cast<clang::Expr>(&statement)) {
    std::string words;
    for (unsigned lane = 0; lane < plan.lanes(); ++lane)
      words += lanes.statement(*expr, Voice::of(lane));
    return words;
  }
  if (const auto *branch = llvm::dyn_cast<clang::IfStmt>(&statement))
    return jamIf(*branch);
  if (const auto *marked = llvm::dyn_cast<clang::AttributedStmt>(&statement)) {
    const Span all = lanes.program().spanOf(statement);
    const Span inner = lanes.program().spanOf(*marked->getSubStmt());
    loopHint = lanes.program().words({all.begin, inner.begin}).str();
    return jam(*marked->getSubStmt());
  }
  loopHint = hint;
  if (const auto *loop = llvm::dyn_cast<clang::ForStmt>(&statement))
    return jamFor(*loop);
  loopHint.clear();
  if (const auto *loop = llvm::dyn_cast<clang::WhileStmt>(&statement))
    return hint + "while (" + lanes.expression(*loop->getCond(), Voice()) +
           ") {\n" + jam(*loop->getBody()) + "}\n";
  const auto *loop = llvm::cast<clang::DoStmt>(&statement);
  return hint + "do {\n" + jam(*loop->getBody()) + "} while (" +
         lanes.expression(*loop->getCond(), Voice()) + ");\n";
}

std::string JamWriter::jamDeclaration(const clang::DeclStmt &statement) {
  const LaneText::Declaration declaration = lanes.split(statement);
  std::string words;
  for (const LaneText::Declarator &declarator : declaration.declarators) {
    if (!variance.differs(*declarator.variable)) {
      words += lanes.declare(declaration, declarator, Voice());
      continue;
    }
    for (unsigned lane = 0; lane < plan.lanes(); ++lane)
      words += lanes.declare(declaration, declarator, Voice::of(lane));
  }
  return words;
}

std::string JamWriter::jamIf(const clang::IfStmt &branch) {
  if (const Guard *guard = variance.guardOf(branch))
    return guarded(*guard, branch, jam(*branch.getThen()),
                   [&](const Voice &voice) {
                     return lanes.statement(*branch.getThen(), voice);
                   });
  std::string words = "if (" + lanes.expression(*branch.getCond(), Voice()) +
                      ") {\n" + jam(*branch.getThen()) + "}\n";
  if (branch.getElse())
    words += "else {\n" + jam(*branch.getElse()) + "}\n";
  return words;
}

std::string JamWriter::jamFor(const clang::ForStmt &loop) {
  const std::string hint = std::exchange(loopHint, "");
  const clang::Stmt *init = loop.getInit();
  std::string before, first = ";";
  if (init && !variance.differsInside(init)) {
    first = llvm::StringRef(lanes.statement(*init, Voice())).rtrim().str();
  } else if (const auto *expr = llvm::dyn_cast_or_null<clang::Expr>(init)) {
    before = jamEach(*expr, ";\n") + ";\n";
  } else if (init) {
    before = jam(*init);
  }
  const std::string cond =
      loop.getCond() ? " " + lanes.expression(*loop.getCond(), Voice()) : "";
  const std::string step =
      loop.getInc() ? " " + jamEach(*loop.getInc(), ", ") : "";
  const std::string words = hint + "for (" + first + cond + ";" + step +
                            ") {\n" + jam(*loop.getBody()) + "}\n";
  return before.empty() ? words : "{\n" + before + words + "}\n";
}

/// Writes an expression for each lane where it differs. Expressions with commas
/// between them are looked at one by one.
std::string JamWriter::jamEach(const clang::Expr &expr,
                               llvm::StringRef separator) {
  const auto *pair = llvm::dyn_cast<clang::BinaryOperator>(expr.IgnoreParens());
  if (pair && pair->getOpcode() == clang::BO_Comma)
    return jamEach(*pair->getLHS(), separator) + separator.str() +
           jamEach(*pair->getRHS(), separator);
  if (!variance.differs(expr))
    return lanes.expression(expr, Voice());
  std::string words;
  for (unsigned lane = 0; lane < plan.lanes(); ++lane)
    words += (lane == 0 ? "" : separator.str()) +
             lanes.expression(expr, Voice::of(lane));
  return words;
}

static const char groupBarrier[] =
    "barrier(CLK_LOCAL_MEM_FENCE | CLK_GLOBAL_MEM_FENCE);\n";

/// Asks for each lane whether it takes the guarded region, and chooses between
/// the jammed one, a jammed `else` and copies.
std::string
JamWriter::guarded(const Guard &guard, const clang::IfStmt &branch,
                   const std::string &together,
                   llvm::function_ref<std::string(const Voice &)> alone) {
  const bool ends = onlyReturns(branch);
  const std::string flag = "on" + std::to_string(guardCount++) + "_";
  std::string asked, all, none;
  for (unsigned lane = 0; lane < plan.lanes(); ++lane) {
    const std::string name = lanes.newNames().numbered(flag, lane);
    asked += "const bool " + name + " = " + (ends ? "!(" : "(") +
             lanes.expression(*branch.getCond(), Voice::of(lane)) + ");\n";
    all += (lane == 0 ? "" : " && ") + name;
    none += (lane == 0 ? "" : " || ") + name;
  }
  std::string words = "{\n" + asked;
  // At a barrier a whole work-group takes the same way, and the lanes of a
  // smaller work-group are one work-group's.
  const bool always = guard.barrier && plan.mode == Mode::Local;
  words += "if (" + (always ? lanes.newNames().numbered(flag, 0) : all) +
           ") {\n" + together + "}\n";
  const clang::Stmt *other = branch.getElse();
  if (always) {
    if (other)
      words += "else {\n" + jam(*other) + "}\n";
    return words + "}\n";
  }
  if (other)
    words += "else if (!(" + none + ")) {\n" + jam(*other) + "}\n";
  words += "else {\n";
  for (unsigned lane = 0; lane < plan.lanes(); ++lane) {
    Voice voice = Voice::of(lane);
    voice.shadows = guard.shadows.empty() ? nullptr : &guard.shadows;
    words += "if (" + lanes.newNames().numbered(flag, lane) + ") {\n" +
             copy(voice, alone) + "}\n";
    if (other)
      words += "else {\n" +
               copy(voice,
                    [&](const Voice &inner) {
                      return lanes.statement(*other, inner);
                    }) +
               "}\n";
    // The copies use the same local memory.
    if (guard.barrier)
      words += groupBarrier;
  }
  return words + "}\n}\n";
}

/// Writes statements as a whole for each lane, one lane after the other.
std::string JamWriter::copies(Statements statements) {
  std::string words;
  for (unsigned lane = 0; lane < plan.lanes(); ++lane)
    words +=
        "{\n" +
        copy(Voice::of(lane),
             [&](const Voice &voice) { return plain(statements, voice); }) +
        "}\n";
  return words;
}

std::string
JamWriter::copy(const Voice &lane,
                llvm::function_ref<std::string(const Voice &)> write) {
  Voice voice = lane;
  voice.end = lanes.newNames().numbered("end", labelCount++);
  std::string words;
  if (voice.shadows)
    for (const clang::VarDecl *variable : inOrder(*voice.shadows))
      words += lanes.copyOf(*variable, lanes.nameOf(*variable, voice));
  words += write(voice);
  if (lanes.tookEnd())
    words += voice.end + ": ;\n";
  return words;
}

std::string JamWriter::plain(Statements statements, const Voice &voice) {
  std::string words;
  for (const clang::Stmt *statement : statements)
    if (!declaresLocal(*statement))
      words += lanes.statement(*statement, voice);
  return words;
}

} // namespace corvane::coarsening
