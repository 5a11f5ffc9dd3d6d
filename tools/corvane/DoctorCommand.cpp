// corvane doctor: examines all that tuning needs, and says what to do.

#include "base/Settings.h"
#include "tools/corvane/Doctor.h"
#include "tools/corvane/Layer.h"
#include "tools/corvane/Library.h"
#include "tools/corvane/OutputText.h"
#include "tools/corvane/Process.h"
#include "tools/corvane/TunedFolder.h"

#include "llvm/ADT/SmallString.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Path.h"

using namespace corvane;
namespace fs = llvm::sys::fs;
namespace path = llvm::sys::path;

ScratchFolder::ScratchFolder() {
  llvm::SmallString<128> made;
  if (!fs::createUniqueDirectory("corvane", made))
    folder = made.str().str();
}

ScratchFolder::~ScratchFolder() {
  if (isThere())
    fs::remove_directories(folder);
}

std::string ScratchFolder::file(const char *name) const {
  llvm::SmallString<128> text(folder);
  path::append(text, name);
  return text.str().str();
}

static std::string agentBeside(const std::string &layer) {
  llvm::SmallString<256> agent(path::parent_path(layer));
  path::append(agent, CORVANE_AGENT_FILE);
  return agent.str().str();
}

int corvane::doctor(const DoctorOptions &options, const Program &program) {
  Findings findings;
  findings.ok("corvane " CORVANE_VERSION);
  examineVariables(findings);
  // What is tried from here on must not write to folders of the user's.
  for (const Setting &setting : settings)
    removeVariable(setting.name);
  examineFolder(findings, absoluteFolder(options.folder));

  const std::optional<std::string> layer = requireLayer();
  const ScratchFolder scratch;
  if (!layer) {
    findings.fail("the layer is not beside this program",
                  "build or install the whole project");
  } else if (!scratch.isThere()) {
    findings.fail("no folder for temporary files could be made",
                  "set TMPDIR to one that can be written to");
  } else {
    const ProbeWords words = {loaderFile, *layer, agentBeside(*layer),
                              scratch.file("opencl")};
    const ProbedOpenCl probed = probeOpenCl(words);
    examineOpenCl(findings, probed);
    if (!program.empty())
      examineProgram(findings, program, probed, words, scratch);
  }
  if (llvm::Error error = replaceFile("-", findings.text())) {
    say(llvm::toString(std::move(error)));
    return CommandFailed;
  }
  return findings.hasFailed() ? FoundProblem : 0;
}
