// Splits the log into messages, which begin without a tab, and reads their
// lines.

#include "tools/corvane/SimulatorLog.h"

#include "llvm/ADT/Twine.h"

#include <map>
#include <tuple>

using namespace corvane;
using llvm::StringRef;

// "Invalid write of size 4 at global memory address 0x1000" without the
// address, which differs from one to the next.
static std::string withoutAddress(StringRef message) {
  const std::size_t at = message.find(" address 0x");
  return message.substr(0, at).str();
}

// The numbers in "Global(511,0,0) Local(63,0,0) Group(7,0,0)".
static std::string workItemIn(StringRef line) {
  return line.split("Global(").second.split(')').first.str();
}

// "At line 24 (column 14) of input.cl:" in other words.
static std::string placeIn(StringRef line) {
  line.consume_front("At ");
  const StringRef number = line.split(" (column").first;
  const StringRef file = line.split(" of ").second.split(':').first;
  return (llvm::Twine(number) + " of " + file).str();
}

namespace {

class LogReader {
public:
  void take(StringRef line);
  std::vector<SimulatorFinding> finish() {
    add();
    return std::move(findings);
  }

private:
  void add();

  std::vector<SimulatorFinding> findings;
  std::map<std::tuple<std::string, std::string, std::string>, std::size_t>
      places;
  SimulatorFinding current;
  bool sourceFollows = false;
};

} // namespace

void LogReader::add() {
  if (!current.kernel.empty()) {
    const auto [place, isNew] = places.try_emplace(
        {current.what, current.kernel, current.place}, findings.size());
    if (isNew)
      findings.push_back(current);
    ++findings[place->second].count;
  }
  current = SimulatorFinding();
}

void LogReader::take(StringRef line) {
  const bool isDetail =
      line.take_front(1) == "\t" || line.take_front(2) == "  ";
  line = line.trim();
  if (!isDetail) {
    if (line.empty())
      return;
    add();
    current.what = withoutAddress(line);
    sourceFollows = false;
    return;
  }
  if (sourceFollows) {
    current.source = line.str();
    sourceFollows = false;
  } else if (line.consume_front("Kernel:")) {
    current.kernel = line.trim().str();
  } else if (line.contains("ntity:") && current.workItem.empty()) {
    current.workItem = workItemIn(line);
  } else if (line.take_front(8) == "At line " && current.place.empty()) {
    current.place = placeIn(line);
    sourceFollows = true;
  }
}

std::vector<SimulatorFinding> corvane::readSimulatorLog(StringRef text) {
  LogReader reader;
  while (!text.empty()) {
    const auto [line, rest] = text.split('\n');
    reader.take(line);
    text = rest;
  }
  return reader.finish();
}
