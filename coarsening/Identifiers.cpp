// Looks for letters that are free.
#include "coarsening/Identifiers.h"

namespace corvane::coarsening {

std::string unusedLetters(llvm::StringRef text) {
  std::string letters = "cv";
  // Every round makes a string that is longer than the one before, so one that
  // `text` lacks comes up before it is as long as `text`.
  while (text.contains(letters))
    letters += 'x';
  return letters;
}

} // namespace corvane::coarsening
