// Joins the variable's value and the folder of the load.

#include "session/OutputDirectory.h"

#include "agent/Environment.h"

#include "llvm/Support/Path.h"

using namespace corvane;

// An empty text names the root.
static bool isRelative(const std::string &directory) {
  return !directory.empty() && !llvm::sys::path::has_root_path(directory);
}

std::optional<std::string>
corvane::outputDirectory(const std::string &loadFolder) {
  const EnvironmentLook look;
  const char *value = look ? resultsDir() : nullptr;
  if (!value)
    return std::nullopt;
  const std::string directory = value;
  if (loadFolder.empty() || !isRelative(directory))
    return directory;
  return loadFolder + "/" + directory;
}
