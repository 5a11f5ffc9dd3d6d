// Writes lines for the user, without control characters.

#include "tools/corvane/Command.h"

#include "llvm/Support/raw_ostream.h"

using namespace corvane;

std::string corvane::printable(llvm::StringRef text) {
  std::string shown = text.str();
  for (char &character : shown)
    if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F)
      character = '?';
  return shown;
}

void corvane::say(const llvm::Twine &line) {
  llvm::errs() << "corvane: " << printable(line.str()) << '\n';
}
