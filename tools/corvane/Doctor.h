// The parts of corvane doctor, each of which examines one thing.

#pragma once

#include "tools/corvane/Command.h"
#include "tools/corvane/Findings.h"
#include "tools/corvane/OpenClProbe.h"

#include <string>

namespace corvane {

/// A folder that is removed with all that is in it.
class ScratchFolder {
public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;

  /// False if it could not be made.
  bool isThere() const { return !folder.empty(); }
  std::string file(const char *name) const;

private:
  std::string folder;
};

/// The variables of the library, of the loader and of PyOpenCL.
void examineVariables(Findings &findings);

/// Whether results can be written to \p folder.
void examineFolder(Findings &findings, const std::string &folder);

/// Loader, layer, agent, platforms and devices.
void examineOpenCl(Findings &findings, const ProbedOpenCl &probed);

/// Runs \p program once with the layer, and says what was seen of it. \p probed
/// is what was found without it.
void examineProgram(Findings &findings, const Program &program,
                    const ProbedOpenCl &probed, const ProbeWords &words,
                    const ScratchFolder &scratch);

} // namespace corvane
