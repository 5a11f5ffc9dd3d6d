// Writes clones, with the ids that they need as parameters.
#include "coarsening/Helpers.h"

namespace corvane::coarsening {

std::vector<IdUse>
Helpers::parametersOf(const clang::FunctionDecl &function) const {
  std::set<IdUse> uses;
  for (const IdUse &use : expressions.functions().factsOf(function).ids) {
    const bool counted = use.kind == BuiltinKind::GroupCount ||
                         use.kind == BuiltinKind::GlobalSize;
    if (expressions.differs(use))
      uses.insert(use);
    else if (plan.mode == Mode::Padded && counted &&
             expressions.isRewritten(use))
      uses.insert({BuiltinKind::GroupCount, use.dim});
  }
  return {uses.begin(), uses.end()};
}

std::string Helpers::cloneOf(const clang::FunctionDecl &function,
                             LaneText &lanes) {
  const auto known = cloned.find(&function);
  if (known != cloned.end())
    return known->second;
  const std::string name =
      names.fresh(function.getNameAsString() + "_" + ending);
  cloned.emplace(&function, name);
  const std::string text = write(function, name, lanes);
  clones += text;
  return name;
}

std::string Helpers::write(const clang::FunctionDecl &function,
                           const std::string &name, LaneText &lanes) const {
  const ProgramText &program = lanes.program();
  std::string parameters;
  for (const IdUse &use : parametersOf(function))
    parameters += (parameters.empty() ? "size_t " : ", size_t ") +
                  names.id(use, std::nullopt);
  const Span old =
      program.spanOfName(function.getLocation(), function.getName());
  const unsigned open = program.find('(', old.end);
  const unsigned close = program.closing(open);
  std::string list = program.words({open + 1, close}).str();
  if (function.getNumParams() == 0)
    list.clear();
  else if (!parameters.empty())
    parameters += ", ";

  // Ids that the clone gets as parameters are not asked for by the kernel.
  const LaneText::IdNeeds needs = lanes.needs;
  const bool counts = lanes.countsUsed;
  const Voice voice{Voice::Loop, 0, nullptr, ""};
  const clang::Stmt &body = *function.getBody();
  const Span bodySpan = program.spanOf(body);
  const std::string words = lanes.piece(bodySpan, body, voice);
  lanes.needs = needs;
  lanes.countsUsed = counts;

  const Span whole = program.spanOf(function.getSourceRange());
  return program.words({whole.begin, old.begin}).str() + name + "(" +
         parameters + list + program.words({close, bodySpan.begin}).str() +
         words + "\n\n";
}

} // namespace corvane::coarsening
