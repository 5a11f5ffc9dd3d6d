// corvane run: sets the variables and becomes the program.

#include "tools/corvane/Layer.h"
#include "tools/corvane/Process.h"
#include "tools/corvane/TunedFolder.h"
#include "tools/corvane/WinningVariants.h"

#include "base/RegularFile.h"
#include "base/Settings.h"
#include "results/ResultFiles.h"
#include "results/profile/ProfileFile.h"

#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"

using namespace corvane;
namespace fs = llvm::sys::fs;

// What was generated for the profile's programs lies beside it.
static void setVariants(const std::string &profile) {
  removeVariable(variable::generate);
  removeVariable(variable::variants);
  const std::string variants = variantsFolder(
      fs::is_directory(profile) ? profile
                                : llvm::sys::path::parent_path(profile).str());
  if (fs::is_directory(variants))
    setVariable(variable::variants, variants);
}

// The library would refuse it too, but only when the program runs already.
static bool isUsable(const std::string &profile) {
  const std::string file =
      fs::is_directory(profile) ? profile + "/" + resultFile::profile : profile;
  if (!fs::exists(file)) {
    say(file + " is not there: make it by corvane tune -- PROGRAM, or name "
               "another with --profile");
    return false;
  }
  llvm::Expected<std::string> text = readRegularFile(file, profileSizeLimit);
  llvm::Error error = text ? readProfile(*text).takeError() : text.takeError();
  if (!error)
    return true;
  say(file + " cannot be used: " + llvm::toString(std::move(error)));
  return false;
}

int corvane::run(const RunOptions &options, const Program &program) {
  const std::string profile = absoluteFolder(options.folder);
  if (!isUsable(profile) || !requireLayer())
    return CommandFailed;
  setVariable(variable::profile, profile);
  setVariants(profile);
  if (options.summary)
    setVariable(variable::summary, "1");

  const ProgramEnd end = become(program);
  if (!end.started)
    say(program[0] + ": " + end.whyNot);
  return end.exitCode;
}
