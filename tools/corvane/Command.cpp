// Writes lines for the user, without control characters.

#include "tools/corvane/Command.h"

#include "llvm/Support/raw_ostream.h"

using namespace corvane;

std::string corvane::printable(llvm::StringRef text) {
  std::string shown = text.str();
  unsigned char before = 0;
  for (char &character : shown) {
    const auto code = static_cast<unsigned char>(character);
    // The second half of the control characters takes two bytes in UTF-8.
    const bool isControl =
        code < 0x20 || code == 0x7F || (before == 0xC2 && code < 0xA0);
    before = code;
    if (isControl)
      character = '?';
  }
  return shown;
}

void corvane::say(const llvm::Twine &line) {
  llvm::errs() << "corvane: " << printable(line.str()) << '\n';
}
