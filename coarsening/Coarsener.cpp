// Runs all stages for one program, and puts the variants after its source.
#include "coarsening/Coarsener.h"

#include "coarsening/EarlyReturns.h"
#include "coarsening/Inline.h"
#include "coarsening/KernelText.h"
#include "coarsening/Preprocess.h"
#include "coarsening/ProgramText.h"
#include "coarsening/TextEnds.h"

namespace corvane::coarsening {

/// The program's kernels that are no variants, in order.
static std::vector<const clang::FunctionDecl *>
kernelsOf(const clang::ASTContext &context) {
  std::vector<const clang::FunctionDecl *> kernels;
  for (const clang::Decl *declared :
       context.getTranslationUnitDecl()->decls()) {
    const auto *function = llvm::dyn_cast<clang::FunctionDecl>(declared);
    if (function && function->hasAttr<clang::OpenCLKernelAttr>() &&
        function->doesThisDeclarationHaveABody() &&
        !function->getName().contains("_coarsed_"))
      kernels.push_back(function);
  }
  return kernels;
}

static std::set<std::string> functionsOf(const clang::ASTContext &context) {
  std::set<std::string> names;
  for (const clang::Decl *declared : context.getTranslationUnitDecl()->decls())
    if (const auto *function = llvm::dyn_cast<clang::FunctionDecl>(declared))
      names.insert(function->getNameAsString());
  return names;
}

/// Indents by the brackets that are open at each line's beginning.
static std::string indented(llvm::StringRef text) {
  std::string result;
  size_t depth = 0;
  while (!text.empty()) {
    const auto [line, rest] = text.split('\n');
    text = rest;
    const llvm::StringRef words = line.trim();
    const bool closes = startsWith(words, "}");
    if (!words.empty() && !startsWith(words, "#"))
      result.append(2 * (depth - (closes && depth > 0 ? 1 : 0)), ' ');
    result += words;
    result += '\n';
    for (size_t at = 0; at < words.size(); ++at) {
      if (words[at] == '"' || words[at] == '\'')
        at = behindLiteral(words, at) - 1;
      else if (words[at] == '{')
        ++depth;
      else if (words[at] == '}' && depth > 0)
        --depth;
    }
  }
  return result;
}

namespace {

class Run {
public:
  Run(const clang::ASTContext &ast, Coarsened &into)
      : context(ast), result(into), taken(functionsOf(ast)),
        names(unusedLetters(ProgramText(ast).all())) {}

  /// The first plan of every kernel comes before the second one of any: in a
  /// long program all kernels get some variants rather than some kernels all.
  void make(llvm::ArrayRef<Plan> plans) {
    const std::vector<const clang::FunctionDecl *> kernels = kernelsOf(context);
    std::map<const clang::FunctionDecl *, std::set<std::string>> made;
    for (const Plan &plan : plans)
      for (const clang::FunctionDecl *kernel : kernels)
        make(*kernel, plan, made[kernel]);
  }

  std::string text;

private:
  void make(const clang::FunctionDecl &kernel, const Plan &plan,
            std::set<std::string> &made) {
    const ProgramText program(context);
    KernelVariant variant =
        makeVariant(kernel, plan, program, names, functions);
    const std::string base = kernel.getNameAsString();
    const std::string name = base + "_coarsed_" + variant.spec;
    if (!variant.refusal && made.count(name))
      return;
    if (!variant.refusal && taken.count(name))
      variant.refusal = Refusal{Reason::NameTaken, name};
    if (!variant.refusal && text.size() + variant.text.size() > longestVariants)
      variant.refusal = Refusal{Reason::TooLarge, ""};
    if (variant.refusal) {
      result.refusals.push_back({base, plan.text(), *variant.refusal});
      return;
    }
    made.insert(name);
    const std::string words = "\n" + indented(variant.text);
    result.variants.push_back(
        {base, plan.text(), name, variant.analysis, text.size(), words.size()});
    text += words;
  }

  const clang::ASTContext &context;
  Coarsened &result;
  const std::set<std::string> taken;
  const Names names;
  FunctionTable functions;
};

} // namespace

/// The source, and after it the variants: where the compiler is one for which
/// they were made, and with the source's macros out of their way.
static std::string join(llvm::StringRef source, llvm::StringRef variants,
                        const Preprocessed &preprocessed,
                        std::vector<MadeVariant> &made) {
  const std::string flag = "CORVANE_VARIANTS_FIT";
  std::string program = "#if " + preprocessed.condition + "\n#define " + flag +
                        "\n#endif\n#line 1\n" + source.str() + "\n\n#ifdef " +
                        flag + "\n";
  for (const std::string &macro : preprocessed.macros)
    program += "#undef " + macro + "\n";
  for (MadeVariant &variant : made)
    variant.begin += program.size();
  return program + variants.str() + "#endif\n";
}

/// Calls inside calls are put in from the inside, one level at a time.
constexpr unsigned deepestCalls = 8;

/// The program in a form that gives better variants, or nothing if it is.
static std::optional<std::string> rewritten(const clang::ASTContext &context) {
  std::optional<std::string> text = inlineBarriers(context);
  return text ? text : withoutEarlyReturns(context);
}

/// Makes the variants of a preprocessed program; their text is the result.
static std::string makeVariants(std::string text, const BuildOptions &options,
                                llvm::ArrayRef<Plan> plans, Coarsened &result,
                                std::optional<ProgramError> &error) {
  std::string variants;
  for (unsigned depth = 0; depth <= deepestCalls && !error; ++depth) {
    std::optional<std::string> better;
    error = parseProgram(text, options, [&](clang::ASTContext &context) {
      if (depth < deepestCalls)
        better = rewritten(context);
      if (better)
        return;
      Run run(context, result);
      run.make(plans);
      variants = std::move(run.text);
    });
    if (!better)
      break;
    text = std::move(*better);
  }
  return variants;
}

Coarsened coarsen(llvm::StringRef source, const BuildOptions &options,
                  llvm::ArrayRef<Plan> plans) {
  Coarsened result;
  result.program = source.str();
  std::optional<ProgramError> error;
  const Preprocessed preprocessed = preprocess(source, options, error);
  result.included = preprocessed.included;
  std::string variants;
  if (!error)
    variants = makeVariants(preprocessed.text, options, plans, result, error);
  if (error)
    result.error = error->message;
  else if (!result.variants.empty())
    result.program = join(source, variants, preprocessed, result.variants);
  return result;
}

} // namespace corvane::coarsening
