// Follows the include directives of a program, as its compiler did.

#include "launch/ProgramObstacle.h"

#include "base/RegularFile.h"
#include "tuning/SourceObstacles.h"

#include "llvm/ADT/SmallString.h"
#include "llvm/Support/Path.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <utility>
#include <vector>

using namespace corvane;
using llvm::StringRef;

// More than any program has.
static constexpr std::size_t mostFiles = 1000;
static constexpr std::uint64_t mostBytesOfFile = std::uint64_t{16} << 20;

// The options one by one; double quotes keep blanks together.
static std::vector<std::string> wordsOf(StringRef options) {
  std::vector<std::string> words(1);
  bool isQuoted = false;
  for (const char c : options) {
    if (c == '"')
      isQuoted = !isQuoted;
    else if (c == ' ' && !isQuoted)
      words.emplace_back();
    else
      words.back() += c;
  }
  return words;
}

static std::vector<std::string> foldersIn(StringRef options) {
  std::vector<std::string> folders;
  bool isNext = false;
  for (StringRef word : wordsOf(options)) {
    word = word.trim();
    if (word.empty())
      continue;
    if (isNext || (word.consume_front("-I") && !word.empty()))
      folders.push_back(word.trim().str());
    isNext = !isNext && word.empty();
  }
  return folders;
}

namespace {
/// A file that was included.
struct Included {
  std::string path;
  std::string text;
};

/// Searches a source and all that it includes.
class IncludeWalk {
public:
  explicit IncludeWalk(StringRef options) : folders(foldersIn(options)) {}

  /// \p folder is that of the text.
  std::string obstacleIn(StringRef text, StringRef folder);

private:
  std::optional<Included> read(const IncludeDirective &file,
                               StringRef folder) const;

  const std::vector<std::string> folders;
  std::set<std::string> seen;
};
} // namespace

std::optional<Included> IncludeWalk::read(const IncludeDirective &file,
                                          StringRef folder) const {
  std::vector<std::string> places;
  if (file.isQuoted)
    places.push_back(folder.str());
  places.insert(places.end(), folders.begin(), folders.end());
  places.emplace_back(); // the current folder
  if (llvm::sys::path::is_absolute(file.name))
    places = {std::string()};
  for (const std::string &place : places) {
    llvm::SmallString<128> path(place);
    llvm::sys::path::append(path, file.name);
    llvm::Expected<std::string> text =
        readRegularFile(path.str().str(), mostBytesOfFile);
    if (text)
      return Included{path.str().str(), std::move(*text)};
    llvm::consumeError(text.takeError());
  }
  return std::nullopt;
}

std::string IncludeWalk::obstacleIn(StringRef text, StringRef folder) {
  if (const StringRef obstacle = obstacleInSource(text); !obstacle.empty())
    return obstacle.str();
  for (const IncludeDirective &file : includeDirectives(text)) {
    if (file.name.empty())
      return "the program includes a file that only its macros name";
    const std::optional<Included> included = read(file, folder);
    if (!included)
      return "the program includes \"" + file.name + "\", which was not found";
    if (!seen.insert(included->path).second)
      continue;
    if (seen.size() > mostFiles)
      return "the program includes too many files";
    std::string obstacle = obstacleIn(
        included->text, llvm::sys::path::parent_path(included->path));
    if (!obstacle.empty())
      return obstacle;
  }
  return {};
}

std::string corvane::obstacleInProgram(StringRef source, StringRef options) {
  if (const StringRef obstacle = obstacleInOptions(options); !obstacle.empty())
    return obstacle.str();
  return IncludeWalk(options).obstacleIn(source, "");
}
