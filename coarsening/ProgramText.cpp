// Converts places in a syntax tree to offsets in the text.
#include "coarsening/ProgramText.h"
#include "coarsening/TextEnds.h"

namespace corvane::coarsening {

ProgramText::ProgramText(const clang::ASTContext &context)
    : ast(context), sources(context.getSourceManager()),
      text(sources.getBufferData(sources.getMainFileID())) {}

size_t behindLiteral(llvm::StringRef text, size_t from) {
  const char quote = text[from];
  size_t at = from + 1;
  while (at < text.size() && text[at] != quote && text[at] != '\n')
    at += text[at] == '\\' ? 2 : 1;
  return std::min(at + 1, text.size());
}

unsigned ProgramText::offsetOf(clang::SourceLocation at) const {
  at = sources.getFileLoc(at);
  if (at.isInvalid() || sources.getFileID(at) != sources.getMainFileID()) {
    foreign = true;
    return 0;
  }
  return sources.getFileOffset(at);
}

Span ProgramText::spanOf(clang::SourceRange range) const {
  clang::SourceLocation begin = range.getBegin();
  if (begin.isMacroID() && !sources.isMacroArgExpansion(begin))
    begin = sources.getExpansionRange(begin).getBegin();
  clang::SourceLocation end = range.getEnd();
  if (end.isMacroID() && !sources.isMacroArgExpansion(end))
    end = sources.getExpansionRange(end).getEnd();
  end = sources.getFileLoc(end);
  Span span{offsetOf(begin), offsetOf(end)};
  span.end += clang::Lexer::MeasureTokenLength(end, sources, ast.getLangOpts());
  if (span.end < span.begin || span.end > text.size()) {
    foreign = true;
    return {};
  }
  span.end = withOpenBrackets(span);
  return span;
}

/// A pragma is written in front of its statement, on a line of its own.
static unsigned beginOfPragma(llvm::StringRef text, unsigned begin) {
  const size_t line = text.rfind('\n', begin);
  const size_t first = line == llvm::StringRef::npos ? 0 : line + 1;
  const bool pragma = startsWith(text.slice(first, begin).ltrim(), "#pragma");
  return pragma ? static_cast<unsigned>(first) : begin;
}

Span ProgramText::spanOf(const clang::Stmt &statement) const {
  Span span = spanOf(statement.getSourceRange());
  if (llvm::isa<clang::AttributedStmt>(statement))
    span.begin = beginOfPragma(text, span.begin);
  return span;
}

Span ProgramText::spanOfName(clang::SourceLocation at,
                             llvm::StringRef name) const {
  const unsigned begin = offsetOf(at);
  const Span span{begin, begin + static_cast<unsigned>(name.size())};
  if (words(span) != name)
    foreign = true;
  return span;
}

unsigned ProgramText::find(char wanted, unsigned from) const {
  const size_t at = text.find(wanted, from);
  if (at != llvm::StringRef::npos)
    return static_cast<unsigned>(at);
  foreign = true;
  return from;
}

unsigned ProgramText::closing(unsigned open) const {
  int depth = 0;
  for (size_t at = open; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '"' || c == '\'') {
      at = behindLiteral(text, at) - 1;
      continue;
    }
    depth += c == '(' || c == '[' || c == '{' ? 1 : 0;
    depth -= c == ')' || c == ']' || c == '}' ? 1 : 0;
    if (depth == 0)
      return static_cast<unsigned>(at);
  }
  foreign = true;
  return open;
}

/// Clang's range of a vector literal with one element, `(float4)(x)`, lacks the
/// last bracket. The end of the span with the brackets that are still open.
unsigned ProgramText::withOpenBrackets(Span span) const {
  int open = 0;
  for (size_t at = span.begin; at < span.end; ++at) {
    if (text[at] == '"' || text[at] == '\'') {
      at = behindLiteral(text, at) - 1;
      continue;
    }
    open += text[at] == '(' ? 1 : 0;
    open -= text[at] == ')' ? 1 : 0;
  }
  size_t end = span.end;
  for (size_t at = span.end; open > 0 && at < text.size(); ++at) {
    if (text[at] == ')') {
      --open;
      end = at + 1;
    } else if (!clang::isWhitespace(static_cast<unsigned char>(text[at]))) {
      break;
    }
  }
  return static_cast<unsigned>(end);
}

llvm::StringRef ProgramText::words(Span span) const {
  return text.slice(span.begin, span.end);
}

std::string ProgramText::edited(Span span, std::vector<Edit> edits) const {
  llvm::stable_sort(edits, [](const Edit &a, const Edit &b) {
    if (a.span.begin != b.span.begin)
      return a.span.begin < b.span.begin;
    return a.span.end > b.span.end;
  });
  std::string result;
  unsigned at = span.begin;
  for (const Edit &edit : edits) {
    if (edit.span.begin < at || edit.span.end > span.end)
      continue;
    result += words({at, edit.span.begin});
    result += edit.words;
    at = edit.span.end;
  }
  return result + words({at, span.end}).str();
}

std::string unusedLetters(llvm::StringRef text) {
  std::string letters = "cv";
  // Every round makes a string that is longer than the one before, so one that
  // `text` lacks comes up before it is as long as `text`.
  while (text.contains(letters))
    letters += 'x';
  return letters;
}

} // namespace corvane::coarsening
