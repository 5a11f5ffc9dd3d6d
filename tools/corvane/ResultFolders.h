// Reads folders with results, of whatever kind, for the commands that show
// them.

#pragma once

#include "results/overview/Overview.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// The name of the file in a run's folder with the words of the command.
inline constexpr const char *commandFile = "command.json";

/// Adds what \p place has: the runs of a tuned folder, the timing log of an
/// autotuned one, or a single run's folder, record or log. Says what cannot be
/// used. False if there is nothing at all, which it says too.
bool addResults(RunSet &runs, const std::string &place);

/// Adds the runs of a tuned folder, and says which of them cannot be used.
void addRuns(RunSet &runs, const std::string &folder);

/// The results of all places together; none if one of them has nothing.
std::optional<RunSet> readResults(const std::vector<std::string> &places);

/// Remembers in the folders of these runs which command made them.
void rememberCommand(const std::string &folder,
                     const std::vector<std::string> &runs,
                     const std::vector<std::string> &command);

/// Whether a folder has anything that addResults would read.
bool hasResults(const std::string &folder);

} // namespace corvane
