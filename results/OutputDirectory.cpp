// Joins the variable's value and the folder of the load.

#include "results/OutputDirectory.h"

#include "agent/Environment.h"

#include "llvm/ADT/SmallString.h"
#include "llvm/Support/FileSystem.h"

using namespace corvane;

std::string corvane::currentFolder() {
  llvm::SmallString<256> folder;
  if (llvm::sys::fs::current_path(folder) ||
      !llvm::sys::fs::equivalent(folder, "."))
    return {};
  return folder.str().str();
}

std::optional<std::string>
corvane::outputDirectory(const std::string &loadFolder) {
  const EnvironmentLook look;
  const char *value = look ? resultsDir() : nullptr;
  if (!value)
    return std::nullopt;
  // An empty value names the root.
  if (loadFolder.empty() || *value == '\0')
    return value;
  llvm::SmallString<256> directory(value);
  llvm::sys::fs::make_absolute(loadFolder, directory);
  return directory.str().str();
}
