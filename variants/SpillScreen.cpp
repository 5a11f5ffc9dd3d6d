// Reads a build log word by word, for the lines that name variants.
#include "variants/SpillScreen.h"

#include "variants/VariantName.h"

namespace corvane {

namespace {

/// Takes words off a text.
class WordCutter {
public:
  explicit WordCutter(char *text) : rest(text) {}

  /// The next word, or null at the end. Blanks and line feeds separate words;
  /// a tab or a carriage return is part of one.
  const char *next() {
    while (isSeparator(*rest))
      ++rest;
    if (*rest == '\0')
      return nullptr;

    const char *word = rest;
    while (*rest != '\0' && !isSeparator(*rest))
      ++rest;
    if (*rest != '\0')
      *rest++ = '\0';
    return word;
  }

  /// The last of the next `count` words, or null when the text has fewer.
  const char *skipTo(int count) {
    const char *word = nullptr;
    for (int taken = 0; taken < count; ++taken)
      word = next();
    return word;
  }

private:
  static bool isSeparator(char c) { return c == ' ' || c == '\n'; }

  char *rest;
};

} // namespace

bool screenBuildLog(char *log) {
  bool flagged = false;
  WordCutter words(log);
  while (const char *start = words.next()) {
    const llvm::StringRef word = start;
    if (word == "Warning:") {
      // "Warning: <kernel> <three words> spilling." This warning alone
      // does not flag a variant: its words are only skipped.
      words.skipTo(5);
    } else if (word == "calclCompile") {
      // "calclCompile failed to keep <kernel> in registers"
      const char *kernel = words.skipTo(4);
      if (kernel && parseVariantName(kernel))
        flagged = true;
    }
  }
  return flagged;
}

} // namespace corvane
