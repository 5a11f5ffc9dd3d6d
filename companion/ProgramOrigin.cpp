// Keeps source and options in a file named by the hash of a binary.

#include "companion/ProgramOrigin.h"

#include "base/ProgramHash.h"

using namespace corvane;

static constexpr std::size_t mostOriginBytes = std::size_t{4} << 20;
static constexpr const char *firstWord = "origin1 ";

KnownBinaries::KnownBinaries(const std::string &path)
    : folder(path, std::uintmax_t{64} << 20) {}

// "origin1 LENGTH\n", options of that length, source.
void KnownBinaries::remember(llvm::StringRef binary,
                             const ProgramOrigin &origin) const {
  const std::string bytes = firstWord + std::to_string(origin.options.size()) +
                            "\n" + origin.options + origin.source;
  if (bytes.size() > mostOriginBytes)
    return;
  const std::string name = sha256Text({binary});
  if (folder.find(name, mostOriginBytes) != bytes)
    folder.keep(name, bytes);
}

std::optional<ProgramOrigin> KnownBinaries::find(llvm::StringRef binary) const {
  const std::optional<std::string> bytes =
      folder.find(sha256Text({binary}), mostOriginBytes);
  if (!bytes)
    return std::nullopt;
  llvm::StringRef rest = *bytes;
  if (!rest.consume_front(firstWord))
    return std::nullopt;
  const auto [length, texts] = rest.split('\n');
  std::size_t size = 0;
  if (length.getAsInteger(10, size) || size >= texts.size())
    return std::nullopt;
  return ProgramOrigin{texts.drop_front(size).str(),
                       texts.take_front(size).str()};
}
