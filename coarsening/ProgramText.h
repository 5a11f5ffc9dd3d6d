// The text of a program, found by the nodes of its syntax tree.
#pragma once

#include "coarsening/ClangHeaders.h"

namespace corvane::coarsening {

/// A piece of text: offsets into the program, the end not included.
struct Span {
  unsigned begin = 0;
  unsigned end = 0;
};

/// New words for a span.
struct Edit {
  Span span;
  std::string words;
};

/// Reads the main file of a syntax tree. Text that is not in it, such as the
/// inside of the compiler's macros, reads as empty, and is remembered.
class ProgramText {
public:
  explicit ProgramText(const clang::ASTContext &ast);

  Span spanOf(clang::SourceRange range) const;
  Span spanOf(const clang::Stmt &statement) const;
  /// A name where it is declared or used.
  Span spanOfName(clang::SourceLocation at, llvm::StringRef name) const;
  /// The offset of the first `wanted` at or after `from`.
  unsigned find(char wanted, unsigned from) const;
  /// The offset of the bracket that closes the one at `open`.
  unsigned closing(unsigned open) const;

  llvm::StringRef words(Span span) const;
  /// The words with `edits` made; of edits that overlap the outer one.
  std::string edited(Span span, std::vector<Edit> edits) const;

  llvm::StringRef all() const { return text; }
  bool sawForeignText() const { return foreign; }
  const clang::ASTContext &context() const { return ast; }

private:
  unsigned offsetOf(clang::SourceLocation at) const;
  unsigned withOpenBrackets(Span span) const;

  const clang::ASTContext &ast;
  const clang::SourceManager &sources;
  llvm::StringRef text;
  mutable bool foreign = false;
};

/// The offset after the string or character literal that begins at `from`.
size_t behindLiteral(llvm::StringRef text, size_t from);

/// A few letters that no identifier of `text` contains: every name that
/// contains them is new to the program.
std::string unusedLetters(llvm::StringRef text);

} // namespace corvane::coarsening
