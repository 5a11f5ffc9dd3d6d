// Puts pieces through LLVM's SHA-256.

#include "base/ProgramHash.h"

#include "llvm/ADT/STLExtras.h"
#include "llvm/ADT/StringExtras.h"
#include "llvm/Support/SHA256.h"

#include <cstdint>

using namespace corvane;

// Not put into text by LLVM's own function, which ends the process where there
// is no memory.
std::string corvane::sha256Text(llvm::ArrayRef<llvm::StringRef> pieces) {
  llvm::SHA256 hash;
  for (const llvm::StringRef piece : pieces)
    hash.update(piece);
  const auto digest = hash.final();
  std::string text;
  for (const auto element : digest) {
    const auto bits = static_cast<std::uint8_t>(element);
    text += llvm::hexdigit(bits >> 4, /*LowerCase=*/true);
    text += llvm::hexdigit(bits & 15, /*LowerCase=*/true);
  }
  return text;
}

// The length of the options is told, so that they cannot pass for a part of
// what comes after them.
std::string corvane::programHashText(llvm::StringRef kind,
                                     llvm::StringRef options,
                                     llvm::StringRef content) {
  const std::string length = " " + std::to_string(options.size()) + "\n";
  return sha256Text({kind, length, options, content});
}

bool corvane::isHashText(llvm::StringRef text) {
  return text.size() == 64 && llvm::all_of(text, [](char c) {
           return llvm::isDigit(c) || (c >= 'a' && c <= 'f');
         });
}
