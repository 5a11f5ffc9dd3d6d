// Scans OpenCL C for names, and for variables outside of functions.

#include "tuning/SourceObstacles.h"

#include "llvm/ADT/StringExtras.h"
#include "llvm/ADT/StringSwitch.h"

#include <algorithm>
#include <cstddef>
#include <utility>

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

/// Finds declarations of writable variables that outlive a launch: those
/// outside of functions, and static ones within.
class ProgramScope {
public:
  /// Whether \p token ends the declaration of such a variable.
  bool endsWritableVariable(llvm::StringRef token);

private:
  /// A statement outside of functions, as far as it was read.
  struct Statement {
    bool isEmpty = true;
    bool isReadOnly = false; ///< what was declared last, a pointer or not
    bool isFunction = false;
    bool isTypedef = false;
    bool hasTag = false;  ///< of a structure, union or enumeration
    bool hasBody = false; ///< of one
    bool isValue = false; ///< after "=", up to the next variable
    unsigned names = 0;   ///< after the tag's keyword or the body
  };
  bool isInAttribute(llvm::StringRef token);
  bool endsStaticVariable(llvm::StringRef token);
  void closeBrace();
  void read(llvm::StringRef token);
  bool endStatement();

  unsigned braces = 0;
  unsigned groups = 0; ///< parentheses and brackets, outside of braces
  Statement statement;
  bool startsAttribute = false;
  unsigned attributeGroups = 0;
  bool isStatic = false; ///< a declaration within a function
  bool staticIsReadOnly = false;
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

static bool isConst(llvm::StringRef token) {
  return llvm::StringSwitch<bool>(token)
      .Cases("constant", "__constant", "const", "__const", true)
      .Default(false);
}

// An attribute has parentheses of its own, wherever it stands.
bool ProgramScope::isInAttribute(llvm::StringRef token) {
  if (token == "__attribute__" || token == "__attribute") {
    startsAttribute = true;
    return true;
  }
  if (!startsAttribute && attributeGroups == 0)
    return false;
  startsAttribute = false;
  if (token == "(")
    ++attributeGroups;
  else if (token == ")" && attributeGroups != 0)
    --attributeGroups;
  return true;
}

bool ProgramScope::endsStaticVariable(llvm::StringRef token) {
  if (token == "static") {
    isStatic = true;
    staticIsReadOnly = false;
  } else if (isConst(token)) {
    staticIsReadOnly = true;
  } else if (token == "*") {
    staticIsReadOnly = false;
  } else if (token == "=" || token == ";") {
    return std::exchange(isStatic, false) && !staticIsReadOnly;
  }
  return false;
}

// The body of a function ends its definition; what follows the braces of a type
// or of an initialiser belongs to them.
void ProgramScope::closeBrace() {
  if (braces == 0 || --braces != 0)
    return;
  if (statement.isFunction) {
    statement = Statement();
    groups = 0;
  } else if (!statement.isValue) {
    statement.hasBody = true;
    statement.names = 0;
  }
}

void ProgramScope::read(llvm::StringRef token) {
  statement.isEmpty = false;
  if (token == "(" || token == "[") {
    if (token == "(" && groups == 0 && !statement.isValue)
      statement.isFunction = true;
    ++groups;
  } else if (token == ")" || token == "]") {
    groups -= groups != 0 ? 1 : 0;
  } else if (groups != 0) {
    return;
  } else if (token == "=" || token == ",") {
    statement.isValue = token == "=";
  } else if (statement.isValue) {
    return;
  } else if (token == "*") {
    statement.isReadOnly = false; // what the pointer points to was
  } else if (isConst(token) || token == "sampler_t") {
    statement.isReadOnly = true;
  } else if (token == "typedef") {
    statement.isTypedef = true;
  } else if (token == "struct" || token == "union" || token == "enum") {
    statement.hasTag = true;
    statement.names = 0;
  } else if (llvm::isAlpha(token.front()) || token.front() == '_') {
    ++statement.names;
  }
}

bool ProgramScope::endStatement() {
  const Statement ended = std::exchange(statement, Statement());
  groups = 0;
  // A tag alone, or with a body, is the declaration of a type.
  const unsigned namesOfType = ended.hasTag && !ended.hasBody ? 1 : 0;
  const bool namesVariable = !ended.hasTag || ended.names > namesOfType;
  return !ended.isEmpty && !ended.isReadOnly && !ended.isFunction &&
         !ended.isTypedef && namesVariable;
}

bool ProgramScope::endsWritableVariable(llvm::StringRef token) {
  if (isInAttribute(token))
    return false;
  if (token == "{") {
    ++braces;
    return false;
  }
  if (token == "}") {
    closeBrace();
    return false;
  }
  if (braces != 0)
    return endsStaticVariable(token);
  if (token == ";")
    return endStatement();
  read(token);
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

llvm::StringRef corvane::obstacleInOptions(llvm::StringRef options) {
  return obstacleInDirective(options);
}

static IncludeDirective fileOf(llvm::StringRef text) {
  const bool isQuoted = text.consume_front("\"");
  if (!isQuoted && !text.consume_front("<"))
    return {{}, false};
  const std::size_t end = text.find(isQuoted ? '"' : '>');
  return {end == llvm::StringRef::npos ? "" : text.take_front(end).str(),
          isQuoted};
}

std::vector<IncludeDirective>
corvane::includeDirectives(llvm::StringRef source) {
  SourceScanner scanner(source, SourceScanner::Directives::Whole);
  std::vector<IncludeDirective> files;
  for (llvm::StringRef token = scanner.next(); !token.empty();
       token = scanner.next())
    if (token.consume_front("#")) {
      llvm::StringRef directive = token.ltrim();
      if (directive.consume_front("include"))
        files.push_back(fileOf(directive.ltrim()));
    }
  return files;
}
