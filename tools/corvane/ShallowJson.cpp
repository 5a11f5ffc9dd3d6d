// Counts brackets, and then leaves the text to LLVM's parser, which calls
// itself for each bracket that is open.

#include "tools/corvane/ShallowJson.h"

using namespace corvane;

static constexpr std::size_t mostBrackets = 2000;

std::optional<llvm::json::Value>
corvane::parseShallowJson(llvm::StringRef text) {
  if (text.count('[') + text.count('{') > mostBrackets)
    return std::nullopt;
  llvm::Expected<llvm::json::Value> value =
      llvm::json::parse(llvm::json::fixUTF8(text));
  if (value)
    return std::move(*value);
  llvm::consumeError(value.takeError());
  return std::nullopt;
}
