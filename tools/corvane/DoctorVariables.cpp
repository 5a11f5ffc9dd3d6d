// Examines environment variables and the folder for results.

#include "base/Settings.h"
#include "results/NumberText.h"
#include "tools/corvane/Doctor.h"
#include "tools/corvane/Process.h"
#include "tools/corvane/TunedFolder.h"
#include "tuning/Tolerance.h"

#include "llvm/ADT/STLExtras.h"
#include "llvm/ADT/SmallString.h"
#include "llvm/ADT/StringRef.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"
#include "llvm/Support/Process.h"
#include "llvm/Support/Program.h"

using namespace corvane;
namespace fs = llvm::sys::fs;
namespace path = llvm::sys::path;

static std::string valueOf(const char *name) {
  const auto value = llvm::sys::Process::GetEnv(name);
  return value ? *value : std::string();
}

static const char *nearestSetting(llvm::StringRef name) {
  const char *nearest = nullptr;
  unsigned least = static_cast<unsigned>(name.size()) / 4;
  for (const Setting &setting : settings) {
    const unsigned distance = name.edit_distance(setting.name, true, least);
    if (distance < least) {
      least = distance;
      nearest = setting.name;
    }
  }
  return nearest;
}

static void examineNames(Findings &findings) {
  for (const std::string &name : variableNames()) {
    if (!llvm::StringRef(name).contains("CORVANE") &&
        name.rfind("CORV_", 0) != 0)
      continue;
    if (llvm::any_of(settings, [&](const Setting &setting) {
          return name == setting.name;
        }))
      continue;
    const char *const nearest = nearestSetting(name);
    findings.warn("variable " + name + " means nothing to the library",
                  nearest ? "did you mean " + std::string(nearest) + "?"
                          : "docs/corvane.md and README.md name those that do");
  }
}

static void examineNumber(Findings &findings, const char *name) {
  const std::string value = valueOf(name);
  if (!value.empty() && !(leadingNumber(value) > 0.0))
    findings.warn(name + ("=" + value) + " is no number above 0", "unset it");
}

static void examineValues(Findings &findings) {
  examineNumber(findings, variable::samples);
  examineNumber(findings, variable::tuneSeconds);
  const std::string verify = valueOf(variable::verify);
  if (!verify.empty() && !parseTolerance(verify))
    findings.warn(std::string(variable::verify) + "=" + verify +
                      " cannot be used",
                  "give exact, off or a part such as 1e-5");
  if (llvm::sys::Process::GetEnv(variable::autotune))
    findings.fail("CORVANE_AUTOTUNE is set and keeps programs from being tuned",
                  "unset it");
}

// A layer whose file name says that it is the agent library.
static bool isAgent(llvm::StringRef file) {
  return path::filename(file).contains("CorvaneAg");
}

static void examineLayer(Findings &findings, llvm::StringRef layer) {
  const std::string named = "OPENCL_LAYERS names " + layer.str();
  if (isAgent(layer))
    findings.fail(named + ", which is the agent library and no layer",
                  "name " CORVANE_LAYER_FILE " instead, which loads it");
  else if (path::filename(layer) == layer)
    findings.warn(named + " without a path",
                  "the system searches its own folders for it; give the full "
                  "path");
  else if (!path::is_absolute(layer))
    findings.warn(named + ", a relative path",
                  "it is searched from the folder that each program is in; "
                  "give the full path");
  else if (!fs::exists(layer))
    findings.fail(named + ", which is not there", "correct the path");
  else
    findings.ok(named);
}

static void examineLayers(Findings &findings) {
  const std::string value = valueOf("OPENCL_LAYERS");
  llvm::SmallVector<llvm::StringRef, 4> layers;
  llvm::StringRef(value).split(layers, llvm::sys::EnvPathSeparator, -1, false);
  for (llvm::StringRef layer : layers)
    examineLayer(findings, layer);
}

static void examinePythonCache(Findings &findings) {
  const std::string home = valueOf("HOME");
  const std::string cache = valueOf("XDG_CACHE_HOME");
  llvm::SmallString<128> folder(cache.empty() ? home : cache);
  if (cache.empty())
    path::append(folder, ".cache");
  path::append(folder, "pyopencl");
  if (!home.empty() && fs::is_directory(folder) &&
      !llvm::sys::Process::GetEnv("PYOPENCL_NO_CACHE"))
    findings.warn("PyOpenCL keeps binaries of programs in " + folder +
                      ", and programs from binaries cannot be tuned",
                  "set PYOPENCL_NO_CACHE=1 for programs that use PyOpenCL");
}

void corvane::examineVariables(Findings &findings) {
  examineNames(findings);
  examineValues(findings);
  examineLayers(findings);
  examinePythonCache(findings);
}

// The folder itself or the nearest one around it that is there.
static std::string existingFolder(std::string folder) {
  while (!folder.empty() && !fs::exists(folder))
    folder = path::parent_path(folder).str();
  return folder;
}

void corvane::examineFolder(Findings &findings, const std::string &folder) {
  constexpr std::uint64_t mebibyte = 1U << 20, little = 100 * mebibyte;
  const std::string existing = existingFolder(folder);
  llvm::SmallString<256> file;
  int descriptor = -1;
  const std::error_code error =
      fs::createUniqueFile(existing + "/try-%%%%%%%%.tmp", descriptor, file);
  if (error) {
    findings.fail("results cannot be written to " + folder + " (" +
                      error.message() + ")",
                  "name another folder with --output");
    return;
  }
  llvm::sys::Process::SafelyCloseFileDescriptor(descriptor);
  fs::remove(file);
  const llvm::ErrorOr<fs::space_info> space = fs::disk_space(existing);
  if (!space) {
    findings.ok("results can be written to " + folder);
    return;
  }
  const std::string free =
      std::to_string(space->available / mebibyte) + " MiB free";
  if (space->available < little)
    findings.warn("results can be written to " + folder + ", but with " + free,
                  "free some of it, or name another folder with --output");
  else
    findings.ok("results can be written to " + folder + ", " + free);
}
