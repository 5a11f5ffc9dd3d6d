// Keeps ordinary names as they are and makes the others harmless.

#include "results/report/PageNames.h"

#include "base/Platform.h"

#include "llvm/ADT/STLExtras.h"
#include "llvm/ADT/StringExtras.h"

#include <algorithm>

using namespace corvane;

// No file system has room for more in a name.
static constexpr std::size_t mostBytes = 255 - sizeof("_graph.html") + 1;

// What is left of a name that gets a number. Far below the limit: a path has
// one as well.
static constexpr std::size_t keptBytes = 150;

static bool isNameCharacter(char c) {
  return llvm::isAlnum(c) || c == '_' || c == '$';
}

static bool isSize(const std::string &text) {
  return llvm::all_of(text, [](char c) { return llvm::isDigit(c); });
}

static bool isOrdinary(const ConfigResults &config) {
  return llvm::all_of(config.kernel, isNameCharacter) &&
         isSize(config.xGlobal) && isSize(config.yGlobal) &&
         isSize(config.zGlobal) && isSize(config.xLocal) &&
         isSize(config.yLocal) && isSize(config.zLocal);
}

static std::string joinedKey(const ConfigResults &config) {
  std::string joined = config.kernel;
  for (const std::string *size :
       {&config.xGlobal, &config.yGlobal, &config.zGlobal, &config.xLocal,
        &config.yLocal, &config.zLocal}) {
    joined += '_';
    joined += *size;
  }
  return joined;
}

// "-" is in no ordinary name, and the number in none of these twice.
static std::string numbered(std::string name, std::size_t number) {
  name.resize(std::min(name.size(), keptBytes));
  std::replace_if(
      name.begin(), name.end(), [](char c) { return !isNameCharacter(c); },
      '-');
  return name + "-" + std::to_string(number);
}

std::string PageNames::nameFor(const ConfigResults &config) {
  ++count;
  std::string name = joinedKey(config);
  if (isOrdinary(config) && name.size() <= mostBytes &&
      taken.insert(platform::comparableFileName(name)).second)
    return name;
  return numbered(std::move(name), count);
}
