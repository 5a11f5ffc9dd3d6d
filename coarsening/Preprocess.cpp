// Preprocesses a program, and records on which of the compiler's macros the
// result depends.
#include "coarsening/Preprocess.h"

#include "coarsening/ClangHeaders.h"
#include "coarsening/Frontend.h"
#include "coarsening/TextEnds.h"

#include "clang/Frontend/CompilerInstance.h"
#include "clang/Frontend/FrontendAction.h"
#include "clang/Frontend/Utils.h"
#include "clang/Lex/MacroInfo.h"
#include "clang/Lex/PPCallbacks.h"
#include "clang/Lex/Preprocessor.h"
#include "llvm/ADT/StringExtras.h"
#include "llvm/Support/raw_ostream.h"

namespace corvane::coarsening {

/// The object-like macros of the compiler's header, except those that say what
/// a device can do. Each is defined as itself while we preprocess: a program
/// that asks for it finds it, and its name stays in the text.
static std::vector<std::string> headerConstants() {
  std::vector<std::string> names;
  llvm::StringRef rest = openClBaseHeader();
  while (!rest.empty()) {
    const auto [line, others] = rest.split('\n');
    rest = others;
    llvm::StringRef text = line.ltrim();
    if (!text.consume_front("#define "))
      continue;
    const llvm::StringRef name = text.ltrim().take_while(
        [](char c) { return llvm::isAlnum(c) || c == '_'; });
    const bool takesArguments =
        startsWith(text.ltrim().drop_front(name.size()), "(");
    const bool feature = startsWith(name, "cl_") || startsWith(name, "__");
    if (!name.empty() && !takesArguments && !feature)
      names.push_back(name.str());
  }
  return names;
}

/// The number that a macro stands for, or nothing if it is more than one.
static std::optional<std::string> numberOf(const clang::Preprocessor &pp,
                                           const clang::MacroInfo &macro) {
  if (!macro.isObjectLike() || macro.getNumTokens() != 1)
    return std::nullopt;
  const clang::Token &token = macro.getReplacementToken(0);
  if (token.isNot(clang::tok::numeric_constant))
    return std::nullopt;
  return pp.getSpelling(token);
}

namespace {

class MacroWatch : public clang::PPCallbacks {
public:
  MacroWatch(clang::Preprocessor &preprocessor, Preprocessed &into)
      : pp(preprocessor), result(into) {}

  void MacroExpands(const clang::Token &name,
                    const clang::MacroDefinition &macro, clang::SourceRange,
                    const clang::MacroArgs *) override {
    ask(name, macro);
  }
  void MacroDefined(const clang::Token &name,
                    const clang::MacroDirective *directive) override {
    const clang::SourceLocation at = directive->getLocation();
    if (!isCompilers(at) && !constants.count(nameOf(name)))
      own.insert(nameOf(name));
  }
  void Defined(const clang::Token &name, const clang::MacroDefinition &macro,
               clang::SourceRange) override {
    ask(name, macro);
  }
  void Ifdef(clang::SourceLocation, const clang::Token &name,
             const clang::MacroDefinition &macro) override {
    ask(name, macro);
  }
  void Ifndef(clang::SourceLocation, const clang::Token &name,
              const clang::MacroDefinition &macro) override {
    ask(name, macro);
  }
  void If(clang::SourceLocation, clang::SourceRange range,
          ConditionValueKind) override {
    askAll(range);
  }
  void Elif(clang::SourceLocation, clang::SourceRange range, ConditionValueKind,
            clang::SourceLocation) override {
    askAll(range);
  }
  void FileChanged(clang::SourceLocation at, FileChangeReason reason,
                   clang::SrcMgr::CharacteristicKind, clang::FileID) override {
    if (reason != EnterFile || at.isInvalid() || at.isMacroID())
      return;
    const clang::PresumedLoc place = pp.getSourceManager().getPresumedLoc(at);
    const clang::FileID file = pp.getSourceManager().getFileID(at);
    const bool real = pp.getSourceManager().getFileEntryForID(file) != nullptr;
    if (place.isValid() && real &&
        file != pp.getSourceManager().getMainFileID())
      result.included.push_back(place.getFilename());
  }

  /// What a program's condition must say about all the macros asked for.
  std::string condition() const {
    std::string words;
    for (const auto &[name, demand] : demands)
      words += (words.empty() ? "" : " && ") + demand;
    return words.empty() ? "1" : words;
  }
  const std::set<std::string> &ownMacros() const { return own; }
  std::set<std::string> constants;

private:
  static std::string nameOf(const clang::Token &name) {
    return name.getIdentifierInfo()->getName().str();
  }

  /// Whether a macro comes from the compiler: not from the text, nor from -D.
  bool isCompilers(clang::SourceLocation at) const {
    const clang::SourceManager &sources = pp.getSourceManager();
    return at.isInvalid() || sources.isWrittenInBuiltinFile(at);
  }

  void ask(const clang::Token &name, const clang::MacroDefinition &macro) {
    const std::string text = nameOf(name);
    const clang::MacroInfo *info = macro.getMacroInfo();
    if (demands.count(text))
      return;
    if (!info) {
      if (!own.count(text))
        demands[text] = "!defined(" + text + ")";
      return;
    }
    if (own.count(text) || info->isBuiltinMacro())
      return;
    const std::optional<std::string> number = numberOf(pp, *info);
    demands[text] = "defined(" + text + ")";
    if (number && !constants.count(text))
      demands[text] += " && " + text + " == " + *number;
  }

  /// Asks for every identifier of a condition, also those that are no macros.
  void askAll(clang::SourceRange range) {
    const clang::SourceManager &sources = pp.getSourceManager();
    const clang::SourceLocation from = sources.getFileLoc(range.getBegin());
    bool invalid = false;
    const llvm::StringRef file =
        sources.getBufferData(sources.getFileID(from), &invalid);
    if (invalid)
      return;
    clang::Lexer lexer(sources.getLocForStartOfFile(sources.getFileID(from)),
                       pp.getLangOpts(), file.begin(),
                       file.begin() + sources.getFileOffset(from), file.end());
    lexer.setParsingPreprocessorDirective(true);
    for (clang::Token token; !lexer.LexFromRawLexer(token);) {
      if (token.isOneOf(clang::tok::eod, clang::tok::eof))
        return;
      if (token.isNot(clang::tok::raw_identifier) ||
          token.getRawIdentifier() == "defined")
        continue;
      pp.LookUpIdentifierInfo(token);
      ask(token, pp.getMacroDefinition(token.getIdentifierInfo()));
    }
  }

  clang::Preprocessor &pp;
  Preprocessed &result;
  std::set<std::string> own;
  std::map<std::string, std::string> demands; ///< by the macro's name
};

class PreprocessAction : public clang::PreprocessorFrontendAction {
public:
  PreprocessAction(Preprocessed &into, llvm::ArrayRef<std::string> names)
      : result(into), constants(names) {}

protected:
  void ExecuteAction() override {
    clang::Preprocessor &pp = getCompilerInstance().getPreprocessor();
    auto watch = std::make_unique<MacroWatch>(pp, result);
    MacroWatch &watched = *watch;
    watched.constants.insert(constants.begin(), constants.end());
    pp.addPPCallbacks(std::move(watch));
    clang::PreprocessorOutputOptions options;
    options.ShowCPP = true;
    options.ShowLineMarkers = false;
    llvm::raw_string_ostream stream(result.text);
    clang::DoPrintPreprocessedInput(pp, &stream, options);
    stream.flush();
    result.condition = watched.condition();
    result.macros.assign(watched.ownMacros().begin(),
                         watched.ownMacros().end());
  }

private:
  Preprocessed &result;
  llvm::ArrayRef<std::string> constants;
};

} // namespace

Preprocessed preprocess(llvm::StringRef source, const BuildOptions &options,
                        std::optional<ProgramError> &error) {
  const std::vector<std::string> constants = headerConstants();
  std::vector<std::string> words = {"-E"};
  words.insert(words.end(), options.language.begin(), options.language.end());
  for (const std::string &name : constants)
    words.push_back("-D" + name + "=" + name);
  words.insert(words.end(), options.preprocessing.begin(),
               options.preprocessing.end());
  Preprocessed result;
  PreprocessAction action(result, constants);
  error = runClang(source, words, action);
  return error ? Preprocessed() : result;
}

BuildOptions readBuildOptions(llvm::ArrayRef<std::string> words) {
  BuildOptions options;
  options.language = {"-cl-std=CL1.2"};
  for (size_t i = 0; i < words.size(); ++i) {
    const llvm::StringRef word = words[i];
    const bool joined = word.size() > 2;
    if (startsWith(word, "-D") || startsWith(word, "-I")) {
      options.preprocessing.push_back(word.substr(0, 2).str());
      if (joined)
        options.preprocessing.push_back(word.drop_front(2).str());
      else if (i + 1 < words.size())
        options.preprocessing.push_back(words[++i]);
      else
        options.preprocessing.pop_back();
    } else if (startsWith(word, "-cl-std=")) {
      options.language.front() = word.str();
    } else if (word == "-cl-single-precision-constant" ||
               word == "-cl-fast-relaxed-math") {
      options.language.push_back(word.str());
    }
  }
  return options;
}

} // namespace corvane::coarsening
