// What the commands share: their options, exit codes and lines for the user.

#pragma once

#include "llvm/ADT/StringRef.h"
#include "llvm/ADT/Twine.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// The program to run, found as a shell does, and its arguments.
using Program = std::vector<std::string>;

/// Exit codes of this program's own, the same as a shell's. All others are
/// those of the program that it ran: 128 + n if that ended by signal n.
enum ExitCode : int {
  FoundProblem = 1,    ///< the command found what it was to look for
  CommandFailed = 125, ///< the command could not do its work
  NotExecutable = 126, ///< the program was found and cannot be run
  NotFound = 127,      ///< the program was not found
};

/// Where results lie unless the user says otherwise.
inline constexpr const char *defaultFolder = "corvane-tuned";

struct TuneOptions {
  std::string folder = defaultFolder;
  std::string samples; ///< empty: not given, so are the next two
  std::string verify;
  std::string seconds;
  bool generates = true; ///< variants of programs that are built from source
  bool quiet = false;    ///< no progress, also on a terminal
};

struct RunOptions {
  std::string folder = defaultFolder; ///< or the profile itself
  bool summary = false;
};

struct CoarsenOptions {
  std::string file;  ///< "-": the standard input
  std::string plans; ///< empty: not given, so are the next two
  std::string output;
  std::string refusals;
  std::vector<std::string> build; ///< options for the build of the program
};

struct ReportOptions {
  std::vector<std::string> folders = {defaultFolder};
  std::string output; ///< empty: not given, so are the next three
  std::string json;
  std::string csv;
  std::string t4;
};

struct ExplainOptions {
  std::string folder = defaultFolder;
  std::string kernel; ///< empty: all
};

struct MergeOptions {
  std::string output;
  std::vector<std::string> folders;
};

struct DiffOptions {
  std::string before;
  std::string after;
  std::optional<double> failOnSlower; ///< as a part: 0.05 is 5 %
};

struct DoctorOptions {
  std::string folder = defaultFolder;
};

/// Each does one command and returns the exit code. \p program is not empty.
int tune(const TuneOptions &options, const Program &program);
int run(const RunOptions &options, const Program &program);
int coarsen(const CoarsenOptions &options);
int report(const ReportOptions &options);
int explain(const ExplainOptions &options);
int merge(const MergeOptions &options);
int diff(const DiffOptions &options);
int check(const Program &program);
/// \p program may be empty.
int doctor(const DoctorOptions &options, const Program &program);

/// Writes one line to standard error, which begins with "corvane".
void say(const llvm::Twine &line);

/// \p text without characters that would move a terminal's cursor.
std::string printable(llvm::StringRef text);

} // namespace corvane
