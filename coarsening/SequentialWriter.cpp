// Puts the whole body into a loop. Lanes share nothing, so the variant is a
// reference for those that jam.
#include "coarsening/SequentialWriter.h"

#include "coarsening/JamWriter.h"
#include "coarsening/Walk.h"

namespace corvane::coarsening {

std::string laneVariable(const Names &names, const Axis &axis) {
  return names.numbered("lane", axis.dim);
}

/// Parameters that the body changes: each lane starts with what was passed.
static std::set<const clang::VarDecl *>
changedParameters(const clang::FunctionDecl &kernel) {
  std::set<const clang::VarDecl *> changed;
  const auto addVariable = [&changed](const clang::Expr &lvalue) {
    const clang::VarDecl *variable = namedVariable(lvalue);
    if (variable && llvm::isa<clang::ParmVarDecl>(variable))
      changed.insert(variable);
  };
  forEachNode(kernel.getBody(), [&](const clang::Stmt &node) {
    bool readsFirst = false;
    if (const clang::Expr *target = changedBy(node, readsFirst))
      addVariable(*target);
    const auto *unary = llvm::dyn_cast<clang::UnaryOperator>(&node);
    if (unary && unary->getOpcode() == clang::UO_AddrOf)
      addVariable(*unary->getSubExpr());
  });
  return changed;
}

std::string
writeSequential(const clang::FunctionDecl &kernel, const Plan &plan,
                LaneText &lanes, unsigned &labels, bool meets,
                llvm::function_ref<std::string()> ids,
                llvm::function_ref<std::string(unsigned axis)> inside) {
  const std::set<const clang::VarDecl *> parameters = changedParameters(kernel);
  const Voice voice{Voice::Loop, 0, &parameters,
                    lanes.newNames().numbered("end", labels++)};
  std::string body;
  for (const clang::VarDecl *parameter : inOrder(parameters))
    body += lanes.copyOf(*parameter, lanes.nameOf(*parameter, voice));
  for (const clang::Stmt *statement : statementsOf(kernel))
    if (!declaresLocal(*statement))
      body += lanes.statement(*statement, voice);
  std::string words = "{\n" + body + "}\n";
  if (lanes.tookEnd())
    words += voice.end + ": ;\n";
  // The next lane uses the same local memory.
  if (meets)
    words += "barrier(CLK_LOCAL_MEM_FENCE | CLK_GLOBAL_MEM_FENCE);\n";

  words = ids() + words;
  for (unsigned i = 0; i < plan.axes.size(); ++i) {
    const Axis &axis = plan.axes[i];
    const std::string lane = laneVariable(lanes.newNames(), axis);
    const std::string limit = inside(i);
    words = "for (uint " + lane + " = 0; " + lane + " < " +
            std::to_string(axis.factor) + "; ++" + lane + ") {\n" +
            (limit.empty() ? "" : "if (!(" + limit + "))\nbreak;\n") + words +
            "}\n";
  }
  return words;
}

} // namespace corvane::coarsening
