// Reads run records, which may have been cut off or edited.

#pragma once

#include "results/runs/RunLines.h"

#include "llvm/ADT/StringRef.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// A line that could not be used.
struct RunProblem {
  std::size_t line = 0; ///< from 1
  std::string text;     ///< what is wrong with it, without the line's number
};

/// A configuration with all that later lines say of it.
struct RunConfiguration {
  ConfigurationLine line;
  std::vector<SampleLine> samples; ///< in the order of the record
  std::vector<CheckLine> checks;
  std::optional<DecisionLine> decision; ///< the last one
};

/// One process's record. The maps are by the numbers that the lines carry;
/// configurations refer only to programs and devices that are there.
struct RunRecord {
  std::optional<ProcessLine> process; ///< none: this is no run record
  std::map<std::uint32_t, DeviceLine> devices;
  std::map<std::uint32_t, ProgramLine> programs;
  std::map<std::uint32_t, RunConfiguration> configurations;
  std::optional<EndLine> end; ///< none: the process was killed

  /// The first RunReader::maxProblems of the lines that could not be used.
  std::vector<RunProblem> problems;
  std::size_t problemCount = 0; ///< of all lines that could not be used
};

/// Takes the lines of one record in their order.
///
/// Lines of unknown kinds and fields of unknown names are ignored. A line that
/// cannot be used is a problem of the run and changes nothing else. A record
/// whose first line is no process line, or one of a later format, is not read.
class RunReader {
public:
  /// How many problems are kept, and how long a line may be, in bytes.
  static constexpr std::size_t maxProblems = 20;
  static constexpr std::size_t maxLineLength = std::size_t(16) << 20;

  /// \p line comes without its line feed. Empty lines are ignored.
  void addLine(llvm::StringRef line);

  /// Says that the last line was cut off: it counts as a problem no more.
  void forgiveLastLine();

  /// The run so far; the reader is empty afterwards.
  RunRecord take();

private:
  void complain(std::string what);

  RunRecord run;
  std::size_t lineNumber = 0;
  bool refused = false;
};

/// Reads a whole record. A last line without its line feed was being written
/// when the process ended: it is used if it can be, and no problem otherwise.
RunRecord readRun(llvm::StringRef text);

/// The version that a file names: empty for "baseline".
std::string versionFromFile(std::string name);

} // namespace corvane
