// Copies the program's text and replaces names, ids and calls that a lane needs
// in another form.
#include "coarsening/LaneText.h"

#include "coarsening/Helpers.h"
#include "coarsening/TextEnds.h"

namespace corvane::coarsening {

static llvm::StringRef wordOf(BuiltinKind kind) {
  switch (kind) {
  case BuiltinKind::GlobalId:
    return "gid";
  case BuiltinKind::LocalId:
    return "lid";
  case BuiltinKind::GroupId:
    return "group";
  default:
    return "groups";
  }
}

std::string Names::id(const IdUse &use, std::optional<unsigned> digit) const {
  std::string name = fresh(wordOf(use.kind)) + std::to_string(use.dim);
  if (digit)
    name += "_" + std::to_string(*digit);
  return name;
}

LaneText::LaneText(const ProgramText &program, const Names &newNames,
                   const Plan &wanted, const Variance &differences,
                   Expressions &all, Helpers &clones)
    : text(program), names(newNames), plan(wanted), variance(differences),
      expressions(all), helpers(clones) {}

std::string LaneText::nameOf(const clang::VarDecl &variable,
                             const Voice &voice) const {
  const llvm::StringRef name = variable.getName();
  if (voice.shadows && voice.shadows->count(&variable))
    return names.shadow(name);
  if (voice.kind == Voice::Lane && variance.differs(variable))
    return names.own(name, voice.lane);
  // In a loop the lanes run one after the other, so all can use the local
  // memory of the first.
  if (voice.kind == Voice::Loop && variance.differs(variable) &&
      isLocal(variable))
    return names.own(name, 0);
  return name.str();
}

std::string LaneText::need(const IdUse &use, const Voice &voice) {
  std::optional<unsigned> digit;
  if (voice.kind == Voice::Lane)
    for (unsigned axis = 0; axis < plan.axes.size(); ++axis)
      if (plan.axes[axis].dim == use.dim)
        digit = plan.digit(voice.lane, axis);
  needs.insert({use, digit});
  return names.id(use, digit);
}

/// What stands for an id or a size of the kernel's launch in the variant's.
std::string LaneText::idText(const IdUse &use, const Voice &voice) {
  const Axis *axis = plan.axisOf(use.dim);
  const std::string dim = std::to_string(use.dim);
  if (!axis)
    return "";
  const std::string factor = std::to_string(axis->factor);
  if (expressions.differs(use))
    return need(use, voice);
  switch (use.kind) {
  case BuiltinKind::LocalSize:
    return plan.mode == Mode::Local
               ? "(get_local_size(" + dim + ") * " + factor + ")"
               : "";
  case BuiltinKind::GroupCount:
    if (plan.mode == Mode::Local)
      return "";
    if (plan.mode == Mode::Global)
      return "(get_num_groups(" + dim + ") * " + factor + ")";
    countsUsed = true;
    return names.id(use, std::nullopt);
  case BuiltinKind::GlobalSize:
    if (plan.mode != Mode::Padded)
      return "(get_global_size(" + dim + ") * " + factor + ")";
    countsUsed = true;
    return "(" + names.id({BuiltinKind::GroupCount, use.dim}, std::nullopt) +
           " * get_local_size(" + dim + "))";
  default:
    return "";
  }
}

/// Edits a call. Returns whether its arguments are covered by that.
bool LaneText::editCall(const clang::CallExpr &call, const Voice &voice,
                        std::vector<Edit> &edits) {
  if (const clang::FunctionDecl *called = calledFunction(call)) {
    editHelperCall(call, *called, voice, edits);
    return false;
  }
  const std::optional<IdUse> use = idUseOf(call, text.context());
  const std::string words = use ? idText(*use, voice) : "";
  if (!words.empty())
    edits.push_back({text.spanOf(call), words});
  return use.has_value();
}

/// Replaces a call of a function that asks for ids by a call of its clone,
/// which gets them as arguments.
void LaneText::editHelperCall(const clang::CallExpr &call,
                              const clang::FunctionDecl &called,
                              const Voice &voice, std::vector<Edit> &edits) {
  const FunctionFacts &facts = expressions.functions().factsOf(called);
  if (llvm::none_of(facts.ids, [&](const IdUse &use) {
        return expressions.isRewritten(use);
      }))
    return;
  const Span name =
      text.spanOfName(call.getCallee()->getBeginLoc(), called.getName());
  std::string arguments;
  for (const IdUse &use : helpers.parametersOf(called)) {
    const bool count = use.kind == BuiltinKind::GroupCount;
    countsUsed |= count;
    arguments += (arguments.empty() ? "" : ", ") +
                 (count ? names.id(use, std::nullopt) : need(use, voice));
  }
  if (!arguments.empty() && call.getNumArgs() != 0)
    arguments += ", ";
  edits.push_back({{name.begin, text.find('(', name.end) + 1},
                   helpers.cloneOf(called, *this) + "(" + arguments});
}

/// Replaces an expression that works out the global id, without the offset, by
/// the lane's id.
bool LaneText::editGlobalId(const clang::Expr &expr, unsigned dim,
                            const Voice &voice, std::vector<Edit> &edits) {
  const IdUse use{BuiltinKind::GlobalId, dim};
  if (!expressions.differs(use))
    return false;
  const clang::PrintingPolicy policy(text.context().getLangOpts());
  edits.push_back(
      {text.spanOf(expr), "((" + expr.getType().getAsString(policy) + ")(" +
                              need(use, voice) + " - get_global_offset(" +
                              std::to_string(dim) + ")))"});
  return true;
}

/// Two lanes' pointers may lead to the same memory, which `restrict` denies.
void LaneText::dropRestrict(Span span, std::vector<Edit> &edits) const {
  const llvm::StringRef words = text.words(span);
  for (size_t at = 0; at < words.size(); ++at) {
    if (!clang::isAsciiIdentifierStart(static_cast<unsigned char>(words[at])))
      continue;
    const llvm::StringRef word = words.drop_front(at).take_while([](char c) {
      return clang::isAsciiIdentifierContinue(static_cast<unsigned char>(c));
    });
    const unsigned begin = span.begin + static_cast<unsigned>(at);
    if (word == "restrict" || word == "__restrict" || word == "__restrict__")
      edits.push_back(
          {{begin, begin + static_cast<unsigned>(word.size())}, ""});
    at += word.size() - 1;
  }
}

/// Local memory is declared first, before the kernel's constants that may give
/// its size.
void LaneText::foldSizes(const clang::VarDecl &variable,
                         std::vector<Edit> &edits) const {
  const clang::TypeSourceInfo *written = variable.getTypeSourceInfo();
  if (!written || !isLocal(variable))
    return;
  auto array = written->getTypeLoc().getAsAdjusted<clang::ArrayTypeLoc>();
  for (; array;
       array = array.getElementLoc().getAsAdjusted<clang::ArrayTypeLoc>()) {
    const clang::Expr *size = array.getSizeExpr();
    clang::Expr::EvalResult value;
    if (size && size->EvaluateAsInt(value, text.context()))
      edits.push_back({text.spanOf(*size),
                       std::to_string(value.Val.getInt().getZExtValue())});
  }
}

void LaneText::editDeclaration(const clang::DeclStmt &declaration,
                               const Voice &voice, std::vector<Edit> &edits) {
  for (const clang::Decl *declared : declaration.decls()) {
    const auto *variable = llvm::dyn_cast<clang::VarDecl>(declared);
    if (!variable)
      continue;
    foldSizes(*variable, edits);
    const std::string name = nameOf(*variable, voice);
    if (name == variable->getName())
      continue;
    const Span span =
        text.spanOfName(variable->getLocation(), variable->getName());
    edits.push_back({span, name});
    const Span whole = text.spanOf(declaration);
    dropRestrict({whole.begin, span.begin}, edits);
  }
}

/// The edits for one node, and whether they cover everything inside it.
bool LaneText::editNode(const clang::Stmt &node, const Voice &voice,
                        std::vector<Edit> &edits) {
  if (const std::optional<unsigned> dim =
          expressions.functions().globalIdForm(node))
    return editGlobalId(llvm::cast<clang::Expr>(node), *dim, voice, edits);
  if (const auto *call = llvm::dyn_cast<clang::CallExpr>(&node))
    return editCall(*call, voice, edits);
  if (const auto *declaration = llvm::dyn_cast<clang::DeclStmt>(&node))
    editDeclaration(*declaration, voice, edits);
  if (llvm::isa<clang::ReturnStmt>(node) && !voice.end.empty()) {
    edits.push_back({text.spanOf(node), "goto " + voice.end});
    endUsed = true;
  }
  const auto *name = llvm::dyn_cast<clang::DeclRefExpr>(&node);
  const auto *variable =
      name ? llvm::dyn_cast<clang::VarDecl>(name->getDecl()) : nullptr;
  if (!variable)
    return false;
  const std::string spoken = nameOf(*variable, voice);
  if (spoken != variable->getName())
    edits.push_back(
        {text.spanOfName(name->getLocation(), variable->getName()), spoken});
  return false;
}

void LaneText::editTree(const clang::Stmt *root, const Voice &voice,
                        std::vector<Edit> &edits) {
  if (!root || editNode(*root, voice, edits))
    return;
  for (const clang::Stmt *child : root->children())
    editTree(child, voice, edits);
}

std::string LaneText::piece(Span span, const clang::Stmt &node,
                            const Voice &voice) {
  std::vector<Edit> edits;
  editTree(&node, voice, edits);
  return text.edited(span, std::move(edits));
}

std::string LaneText::expression(const clang::Expr &expr, const Voice &voice) {
  return piece(text.spanOf(expr), expr, voice);
}

/// The statement that the last words of `statement` belong to.
static const clang::Stmt *lastOf(const clang::Stmt *statement) {
  for (;;) {
    if (const auto *branch = llvm::dyn_cast<clang::IfStmt>(statement))
      statement = branch->getElse() ? branch->getElse() : branch->getThen();
    else if (const auto *loop = llvm::dyn_cast<clang::ForStmt>(statement))
      statement = loop->getBody();
    else if (const auto *first = llvm::dyn_cast<clang::WhileStmt>(statement))
      statement = first->getBody();
    else if (const auto *choice = llvm::dyn_cast<clang::SwitchStmt>(statement))
      statement = choice->getBody();
    else if (const auto *label = llvm::dyn_cast<clang::SwitchCase>(statement))
      statement = label->getSubStmt();
    else if (const auto *marked =
                 llvm::dyn_cast<clang::AttributedStmt>(statement))
      statement = marked->getSubStmt();
    else
      return statement;
  }
}

static bool wantsSemicolon(const clang::Stmt &statement) {
  const clang::Stmt *last = lastOf(&statement);
  return !llvm::isa<clang::CompoundStmt>(last) &&
         !llvm::isa<clang::DeclStmt>(last) && !llvm::isa<clang::NullStmt>(last);
}

std::string LaneText::statement(const clang::Stmt &statement,
                                const Voice &voice) {
  std::string words = piece(text.spanOf(statement), statement, voice);
  return words + (wantsSemicolon(statement) ? ";\n" : "\n");
}

/// Goes back from a variable's name over what belongs to it alone: the stars of
/// a pointer with their qualifiers, and brackets around them.
Span LaneText::declaratorOf(const clang::VarDecl &variable) const {
  const Span name = text.spanOfName(variable.getLocation(), variable.getName());
  const llvm::StringRef before = text.all().take_front(name.begin);
  Span span{name.begin, name.end};
  size_t at = before.size();
  for (;;) {
    const llvm::StringRef left = before.take_front(at).rtrim();
    if (endsWith(left, "*") || endsWith(left, "(")) {
      at = left.size() - 1;
      span.begin = static_cast<unsigned>(at);
      continue;
    }
    const size_t wordBegin = left.find_last_not_of(
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_");
    const llvm::StringRef word =
        left.drop_front(wordBegin == llvm::StringRef::npos ? 0 : wordBegin + 1);
    const bool qualifier =
        word == "const" || word == "volatile" || word == "restrict" ||
        word == "__restrict" || word == "__restrict__" || word == "__private" ||
        word == "private" || word == "__global" || word == "global" ||
        word == "__local" || word == "local" || word == "__constant" ||
        word == "constant";
    if (!qualifier)
      break;
    at = left.size() - word.size();
  }
  return span;
}

LaneText::Declaration LaneText::split(const clang::DeclStmt &statement) {
  Declaration result;
  const Span whole = text.spanOf(statement);
  unsigned begin = 0;
  for (const clang::Decl *declared : statement.decls()) {
    const auto *variable = llvm::dyn_cast<clang::VarDecl>(declared);
    if (!variable) {
      verdict.refuse(Reason::TypeInDeclaration);
      continue;
    }
    const Span name =
        text.spanOfName(variable->getLocation(), variable->getName());
    if (result.declarators.empty()) {
      begin = declaratorOf(*variable).begin;
      result.specifiers = {whole.begin, begin};
    }
    unsigned end = name.end;
    while (end < whole.end) {
      const char c = text.all()[end];
      if (c == ',' || c == ';')
        break;
      if (c == '(' || c == '[' || c == '{')
        end = text.closing(end);
      else if (c == '"' || c == '\'')
        end = static_cast<unsigned>(behindLiteral(text.all(), end)) - 1;
      ++end;
    }
    result.declarators.push_back({variable, {begin, end}});
    begin = end + 1;
  }
  return result;
}

std::string LaneText::declare(const Declaration &declaration,
                              const Declarator &declarator,
                              const Voice &voice) {
  const clang::VarDecl &variable = *declarator.variable;
  std::vector<Edit> edits;
  foldSizes(variable, edits);
  const std::string name = nameOf(variable, voice);
  const Span span = text.spanOfName(variable.getLocation(), variable.getName());
  if (name != variable.getName()) {
    edits.push_back({span, name});
    dropRestrict({declarator.span.begin, span.begin}, edits);
  }
  editTree(variable.getInit(), voice, edits);
  return text.words(declaration.specifiers).rtrim().str() + " " +
         llvm::StringRef(text.edited(declarator.span, std::move(edits)))
             .trim()
             .str() +
         ";\n";
}

std::string LaneText::copyOf(const clang::VarDecl &variable,
                             llvm::StringRef name) {
  clang::PrintingPolicy policy(text.context().getLangOpts());
  std::string words;
  llvm::raw_string_ostream stream(words);
  clang::QualType type = variable.getType();
  type.removeLocalRestrict();
  type.removeLocalConst();
  type = text.context().removeAddrSpaceQualType(type);
  type.print(stream, policy, name);
  return stream.str() + " = " + variable.getNameAsString() + ";\n";
}

} // namespace corvane::coarsening
