// Reads numbers and texts of the environment that anyone may have written.

#include "launch/TuneSettings.h"

#include "agent/Environment.h"
#include "agent/ErrorStream.h"

#include "llvm/ADT/StringExtras.h"
#include "llvm/Support/Path.h"

#include <charconv>

using namespace corvane;

// The value is repeated without the characters that would move a terminal's
// cursor, and not at any length.
static void tellUnreadable(const char *name, llvm::StringRef value,
                           const char *used) {
  std::string shown = value.take_front(40).str();
  for (char &c : shown)
    if (!llvm::isPrint(c))
      c = '?';
  writeError(std::string("CV: ") + name + " is \"" + shown +
             "\", which cannot be used: " + used + ".\n");
}

// Null if the variable is not defined or empty.
static const char *valueOf(const char *variable) {
  const char *const value = lookUp(variable);
  return value && *value != '\0' ? value : nullptr;
}

static unsigned readSamples(unsigned otherwise) {
  const char *const value = valueOf(variable::samples);
  if (!value)
    return otherwise;
  constexpr unsigned mostSamples = 1000;
  unsigned samples = 0;
  if (!llvm::StringRef(value).getAsInteger(10, samples) && samples != 0 &&
      samples <= mostSamples)
    return samples;
  tellUnreadable(variable::samples, value, "7 samples are taken");
  return otherwise;
}

static Tolerance readTolerance() {
  const char *const value = valueOf(variable::verify);
  if (!value)
    return {};
  if (const std::optional<Tolerance> tolerance = parseTolerance(value))
    return *tolerance;
  tellUnreadable(variable::verify, value, "results must be equal");
  return {};
}

static TuneSettings::Duration readSeconds() {
  constexpr TuneSettings::Duration unlimited = TuneSettings::Duration::max();
  const char *const value = valueOf(variable::tuneSeconds);
  if (!value)
    return unlimited;
  const llvm::StringRef text = value;
  double seconds = -1.0;
  const auto [end, error] = std::from_chars(text.begin(), text.end(), seconds);
  // A comparison with NaN is false, so NaN is refused as well.
  if (error != std::errc() || end != text.end() || !(seconds >= 0.0)) {
    tellUnreadable(variable::tuneSeconds, value, "the time has no limit");
    return unlimited;
  }
  constexpr double mostSeconds = 1e9;
  if (seconds > mostSeconds)
    return unlimited;
  return std::chrono::duration_cast<TuneSettings::Duration>(
      std::chrono::duration<double>(seconds));
}

std::optional<TuneSettings>
corvane::readTuneSettings(const std::string &loadFolder) {
  const char *const folder = valueOf(variable::tune);
  if (!folder)
    return std::nullopt;
  TuneSettings settings;
  settings.folder = folder;
  if (!loadFolder.empty() && !llvm::sys::path::has_root_path(settings.folder))
    settings.folder = loadFolder + "/" + settings.folder;
  settings.samples = readSamples(settings.samples);
  settings.tolerance = readTolerance();
  settings.mostTime = readSeconds();
  return settings;
}
