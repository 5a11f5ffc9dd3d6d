// Scans OpenCL C for names, and for variables outside of functions.

#include "tuning/SourceObstacles.h"

#include "llvm/ADT/StringExtras.h"
#include "llvm/ADT/StringSwitch.h"

#include <algorithm>
#include <cstddef>

using namespace corvane;

namespace {
/// Reads identifiers and punctuation; skips blanks, comments and literals.
class SourceScanner {
public:
  enum class Directives { Whole, InTokens };
  SourceScanner(llvm::StringRef source, Directives directives)
      : rest(source), directivesAre(directives) {}

  /// The next identifier, number or single character, or, where they are
  /// wanted whole, preprocessor line from its '#' on; empty at the end.
  llvm::StringRef next();

private:
  bool skipOne();
  void skipLiteral(char quote);
  std::size_t directiveLength() const;

  llvm::StringRef rest;
  const Directives directivesAre;
};

/// Tells declarations of writable variables from the other statements outside
/// of functions.
class ProgramScope {
public:
  /// Whether \p token ends the declaration of a writable variable.
  bool endsWritableVariable(llvm::StringRef token);

private:
  void startStatement() { *this = ProgramScope(); }

  unsigned braces = 0;
  bool isEmpty = true;
  bool isReadOnly = false;
  bool isGlobal = false;
  bool isFunction = false;
  bool isType = false; ///< or a variable of a type that is named as such
};
} // namespace

void SourceScanner::skipLiteral(char quote) {
  std::size_t at = 1;
  while (at < rest.size() && rest[at] != quote && rest[at] != '\n')
    at += rest[at] == '\\' ? 2 : 1;
  rest = rest.substr(at).drop_front(at < rest.size() ? 1 : 0);
}

// Skips one thing that is no token; false if a token follows.
bool SourceScanner::skipOne() {
  if (rest.consume_front("\\\n"))
    return true;
  if (llvm::isSpace(rest.front()))
    rest = rest.drop_front();
  else if (rest.take_front(2) == "//")
    rest = rest.drop_until([](char c) { return c == '\n'; });
  else if (rest.consume_front("/*"))
    rest = rest.split("*/").second;
  else if (rest.front() == '"' || rest.front() == '\'')
    skipLiteral(rest.front());
  else
    return false;
  return true;
}

// A backslash continues the line.
std::size_t SourceScanner::directiveLength() const {
  std::size_t at = 0;
  while (at < rest.size() && rest[at] != '\n')
    at += rest[at] == '\\' ? 2 : 1;
  return std::min(at, rest.size());
}

llvm::StringRef SourceScanner::next() {
  while (!rest.empty() && skipOne()) {
  }
  std::size_t length =
      rest.take_while([](char c) { return llvm::isAlnum(c) || c == '_'; })
          .size();
  if (directivesAre == Directives::Whole && rest.take_front() == "#")
    length = directiveLength();
  const llvm::StringRef token =
      rest.take_front(std::max<std::size_t>(length, 1));
  rest = rest.drop_front(token.size());
  return token;
}

bool ProgramScope::endsWritableVariable(llvm::StringRef token) {
  if (token == "{") {
    ++braces;
    return false;
  }
  if (token == "}") {
    // The body of a function ends its definition; what follows the braces of a
    // type or of an initialiser belongs to them.
    if (braces != 0 && --braces == 0 && isFunction)
      startStatement();
    return false;
  }
  if (braces != 0)
    return false;
  if (token == ";") {
    const bool isVariable =
        !isEmpty && !isReadOnly && !isFunction && (isGlobal || !isType);
    startStatement();
    return isVariable;
  }
  isEmpty = false;
  if (token == "(")
    isFunction = true;
  if (token == "global" || token == "__global")
    isGlobal = true;
  if (llvm::StringSwitch<bool>(token)
          .Cases("constant", "__constant", "const", true)
          .Default(false))
    isReadOnly = true;
  if (llvm::StringSwitch<bool>(token)
          .Cases("typedef", "struct", "union", "enum", true)
          .Default(false))
    isType = true;
  return false;
}

static llvm::StringRef obstacleInName(llvm::StringRef name) {
  return llvm::StringSwitch<llvm::StringRef>(name)
      .Case("printf", "the program prints")
      .Cases("pipe", "__pipe", "read_pipe", "write_pipe",
             "the program uses pipes")
      .Case("enqueue_kernel", "the program enqueues kernels itself")
      .Default({});
}

// A macro may have any of the names in its text.
static llvm::StringRef obstacleInDirective(llvm::StringRef directive) {
  SourceScanner scanner(directive, SourceScanner::Directives::InTokens);
  for (llvm::StringRef token = scanner.next(); !token.empty();
       token = scanner.next())
    if (const llvm::StringRef obstacle = obstacleInName(token);
        !obstacle.empty())
      return obstacle;
  return {};
}

llvm::StringRef corvane::obstacleInSource(llvm::StringRef source) {
  SourceScanner scanner(source, SourceScanner::Directives::Whole);
  ProgramScope scope;
  for (llvm::StringRef token = scanner.next(); !token.empty();
       token = scanner.next()) {
    if (token.front() == '#') {
      if (const llvm::StringRef obstacle = obstacleInDirective(token);
          !obstacle.empty())
        return obstacle;
      continue;
    }
    if (const llvm::StringRef obstacle = obstacleInName(token);
        !obstacle.empty())
      return obstacle;
    if (scope.endsWritableVariable(token))
      return "the program has writable variables outside of functions";
  }
  return {};
}
