// Cuts the winners out of the generated programs.

#include "tools/corvane/WinningVariants.h"

#include "base/ProgramHash.h"
#include "companion/WholeFile.h"
#include "tools/corvane/Command.h"
#include "tools/corvane/TunedFolder.h"
#include "variants/VariantName.h"

#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"

#include <map>
#include <set>
#include <utility>

using namespace corvane;
namespace fs = llvm::sys::fs;
namespace path = llvm::sys::path;

std::string corvane::generatedFolder(const std::string &folder) {
  return joined(folder, "generated");
}

std::string corvane::variantsFolder(const std::string &folder) {
  return joined(folder, "variants");
}

void GeneratedPrograms::addFile(const std::string &file,
                                const std::string &name) {
  const auto bytes = readWholeFile(file, mostVariantsBytes);
  std::optional<VariantsFile> generated =
      bytes ? readVariants(*bytes) : std::nullopt;
  if (!generated)
    say(file + " has no generated variants that can be read");
  else if (!addVariants(byName[name], std::move(*generated)))
    say(file + " was made of another source than a file of this name in "
               "another folder: its variants are left out");
}

void GeneratedPrograms::addFolder(const std::string &folder) {
  for (const std::string &place :
       {generatedFolder(folder), variantsFolder(folder)}) {
    std::error_code missing;
    for (fs::directory_iterator at(place, missing), end; !missing && at != end;
         at.increment(missing)) {
      const std::string name = path::filename(at->path()).str();
      // What else lies there is not ours.
      if (const llvm::StringRef hash = path::stem(name);
          isHashText(hash) && name == variantsFileName(hash))
        addFile(at->path(), name);
    }
  }
}

bool GeneratedPrograms::write(const std::string &folder) const {
  const std::string to = generatedFolder(folder);
  for (const auto &[name, generated] : byName) {
    const std::string file = pathInFolder(to, name);
    if (fs::create_directories(to) ||
        !replaceWholeFile(file, variantsText(generated))) {
      say(file + " cannot be written");
      return false;
    }
  }
  return true;
}

/// Kernels and specs, as profiles name them.
using Winners = std::set<std::pair<std::string, std::string>>;

static std::map<std::string, Winners> winnersIn(const Profile &profile) {
  std::map<std::string, Winners> byProgram;
  for (const std::string &program : profile.programs)
    byProgram[program];
  for (const ProfileEntry &entry : profile.entries)
    if (entry.use && entry.program < profile.programs.size())
      byProgram[profile.programs[entry.program]].emplace(entry.kernel,
                                                         *entry.use);
  return byProgram;
}

static std::set<std::string> namesOf(const Winners &winners,
                                     const VariantsFile &generated) {
  std::set<std::string> names;
  for (const ListedVariant &variant : generated.variants) {
    const auto parsed = parseVariantName(variant.name);
    if (parsed && winners.count({parsed->baseName,
                                 parsed->llvm::TransformedKernel::specText()}))
      names.insert(variant.name);
  }
  return names;
}

// Empty if the program needs none.
static std::string textFor(const Winners &winners, const std::string &file) {
  if (winners.empty())
    return {};
  const auto bytes = readWholeFile(file, mostVariantsBytes);
  std::optional<VariantsFile> generated =
      bytes ? readVariants(*bytes) : std::nullopt;
  if (!generated)
    return {};
  keepVariants(*generated, namesOf(winners, *generated));
  return generated->variants.empty() ? std::string() : variantsText(*generated);
}

void corvane::writeWinningVariants(const std::string &folder,
                                   const Profile &profile) {
  const std::string from = generatedFolder(folder);
  const std::string to = variantsFolder(folder);
  for (const auto &[program, winners] : winnersIn(profile)) {
    // It may come from a record that anyone has written.
    if (!isHashText(program))
      continue;
    const std::string name = variantsFileName(program);
    const std::string text = textFor(winners, pathInFolder(from, name));
    const std::string file = pathInFolder(to, name);
    if (text.empty()) {
      fs::remove(file);
      continue;
    }
    if (fs::create_directories(to) || !replaceWholeFile(file, text))
      say(file + " cannot be written: the program will run without it");
  }
}
