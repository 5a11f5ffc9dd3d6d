// Reads the variables.

#include "layer/CompanionSettings.h"

#include "base/Platform.h"
#include "base/Settings.h"
#include "layer/ObjectTable.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

using namespace corvane;
using namespace corvane::layer;

static std::string valueOf(const char *name) {
  const char *const value = std::getenv(name);
  return value ? value : "";
}

// The application may change its folder later.
static std::string absolute(const std::string &path) {
  std::error_code unknown;
  return path.empty() ? path
                      : std::filesystem::absolute(path, unknown).string();
}

static CompanionSettings readSettings() {
  CompanionSettings settings;
  const bool tunes = !valueOf(variable::tune).empty();
  const bool isProfiled = !valueOf(variable::profile).empty();
  // The user who wrote the environment must not choose a program to run with
  // rights that are not the user's.
  if (platform::hasForeignRights() || std::getenv(variable::autotune) ||
      (!tunes && !isProfiled))
    return settings;
  settings.folder = absolute(valueOf(variable::variants));
  if (tunes)
    settings.generator = absolute(valueOf(variable::generate));
  return settings;
}

const CompanionSettings &corvane::layer::companionSettings() {
  static const auto &settings = *new CompanionSettings(readSettings());
  return settings;
}
