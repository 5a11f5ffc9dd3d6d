// Writes the list line by line.
#include "coarsening/ListedProgram.h"

#include "llvm/ADT/StringExtras.h"
#include "llvm/Support/MemoryBuffer.h"
#include "llvm/Support/SHA256.h"

#include <algorithm>
#include <cstdint>

namespace corvane::coarsening {

/// One line, whatever the text holds.
static std::string oneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(),
      [](unsigned char c) { return c < 0x20 || c == 0x7f; }, '?');
  return text;
}

/// Of a file that cannot be read: text that is no hash, so that no file has it.
static std::string hashOf(const std::string &file) {
  const auto content = llvm::MemoryBuffer::getFile(file);
  if (!content)
    return "unknown";
  llvm::SHA256 hash;
  hash.update((*content)->getBuffer());
  std::string text;
  for (const auto element : hash.final()) {
    const auto bits = static_cast<std::uint8_t>(element);
    text += llvm::hexdigit(bits >> 4, /*LowerCase=*/true);
    text += llvm::hexdigit(bits & 15, /*LowerCase=*/true);
  }
  return text;
}

/// Why there is no variant, with an example.
static std::string whyNone(const Coarsened &result) {
  if (result.error)
    return "the generator cannot read the source: " + *result.error;
  if (result.refusals.empty())
    return "the source has no kernels";
  const RefusedPlan &first = result.refusals.front();
  return "no kernel can be coarsened; " + first.kernel + ": " +
         codeOf(first.refusal.reason).str();
}

std::string listedProgram(const Coarsened &result) {
  std::string text = "// Variants of kernels, format 1\n";
  for (const MadeVariant &variant : result.variants)
    text += "// variant " + std::to_string(variant.begin) + " " +
            std::to_string(variant.size) + " " + variant.name + "\n";
  for (const std::string &file : result.included)
    text += "// included " + hashOf(file) + " " + oneLine(file) + "\n";
  if (result.variants.empty())
    text += "// none " + oneLine(whyNone(result)) + "\n";
  const std::string program =
      result.variants.empty() ? std::string() : result.program;
  return text + "// program " + std::to_string(program.size()) + "\n" + program;
}

} // namespace corvane::coarsening
