// Asks the system about this process, and makes the folder of its run.

#include "session/RunFolder.h"

#include "agent/Environment.h"
#include "base/Platform.h"
#include "results/ResultFiles.h"

#include "llvm/ADT/StringExtras.h"
#include "llvm/Support/FileSystem.h"
#include "llvm/Support/Format.h"
#include "llvm/Support/Path.h"
#include "llvm/Support/Process.h"
#include "llvm/Support/raw_ostream.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>

using namespace corvane;
using platform::NewDirectory;

static bool isLeapYear(int year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

// Takes whole units off \p days as long as there are enough: returns how many
// units those were, counted from 0.
template <typename Length>
static int takeUnits(std::int64_t &days, Length lengthOf) {
  int taken = 0;
  for (; days >= lengthOf(taken); ++taken)
    days -= lengthOf(taken);
  return taken;
}

// Not by std::gmtime, whose answer lies in memory that the application's
// threads write to as well.
static void writeDate(llvm::raw_ostream &text, std::int64_t daysSince1970) {
  std::int64_t days = std::max<std::int64_t>(daysSince1970, 0);
  const int year = 1970 + takeUnits(days, [](int years) {
                     return isLeapYear(1970 + years) ? 366 : 365;
                   });
  const int month = takeUnits(days, [year](int months) {
    constexpr std::array lengths{31, 28, 31, 30, 31, 30,
                                 31, 31, 30, 31, 30, 31};
    return lengths.at(static_cast<std::size_t>(months)) +
           (months == 1 && isLeapYear(year) ? 1 : 0);
  });
  text << llvm::format("%04d-%02d-%02d", year, month + 1,
                       static_cast<int>(days) + 1);
}

std::string corvane::utcText(std::int64_t seconds) {
  constexpr std::int64_t secondsADay = 86400;
  const std::int64_t inDay = seconds % secondsADay;
  std::string text;
  llvm::raw_string_ostream out(text);
  writeDate(out, seconds / secondsADay);
  out << llvm::format("T%02d:%02d:%02dZ", static_cast<int>(inDay / 3600),
                      static_cast<int>(inDay / 60 % 60),
                      static_cast<int>(inDay % 60));
  return out.str();
}

static std::string utcNow() {
  return utcText(std::chrono::duration_cast<std::chrono::seconds>(
                     std::chrono::system_clock::now().time_since_epoch())
                     .count());
}

// The process's number among those of one parallel program, as the programs
// that start such processes tell it.
static std::optional<std::uint64_t> rankOfProcess() {
  for (const char *name :
       {"OMPI_COMM_WORLD_RANK", "PMI_RANK", "PMIX_RANK", "SLURM_PROCID"}) {
    const char *const value = lookUp(name);
    std::uint64_t rank = 0;
    if (value && !llvm::StringRef(value).getAsInteger(10, rank))
      return rank;
  }
  return std::nullopt;
}

ProcessLine corvane::describeProcess() {
  ProcessLine line;
  line.library = CORVANE_VERSION;
  line.program = llvm::sys::fs::getMainExecutable(nullptr, nullptr);
  line.host = platform::hostName();
  line.pid = static_cast<std::uint64_t>(llvm::sys::Process::getProcessId());
  line.start = utcNow();
  // A build on another thread may be moving variables.
  if (const EnvironmentLook look; look) {
    line.rank = rankOfProcess();
    for (const Setting &setting : settings)
      if (const char *value = lookUp(setting.name))
        line.settings.emplace_back(setting.name, value);
  }
  return line;
}

// Of a name only what every file system takes as it is, and not too much.
static std::string partOfName(llvm::StringRef text) {
  constexpr std::size_t mostCharacters = 64;
  std::string part = text.take_front(mostCharacters).str();
  std::replace_if(
      part.begin(), part.end(),
      [](char c) { return !llvm::isAlnum(c) && c != '.' && c != '_'; }, '_');
  return part.empty() ? "unknown" : part;
}

static std::string runName(const ProcessLine &process) {
  std::string time = process.start;
  time.erase(std::remove_if(time.begin(), time.end(),
                            [](char c) { return !llvm::isAlnum(c); }),
             time.end());
  return partOfName(llvm::sys::path::filename(process.program)) + "-" +
         partOfName(process.host) + "-" + std::to_string(process.pid) + "-" +
         time;
}

std::optional<std::string>
corvane::makeRunFolder(const std::string &tunedFolder,
                       const ProcessLine &process) {
  const std::string runs = resultPath(tunedFolder, resultFile::runFolder);
  platform::createDirectory(tunedFolder.c_str());
  platform::createDirectory(runs.c_str());
  const std::string path = runs + "/" + runName(process);
  // A process number that came again within one second has taken the name.
  constexpr int mostTries = 1000;
  for (int i = 1; i != mostTries; ++i) {
    const std::string tried = i == 1 ? path : path + "-" + std::to_string(i);
    switch (platform::createNewDirectory(tried.c_str())) {
    case NewDirectory::Made:
      return tried;
    case NewDirectory::NotMade:
      return std::nullopt;
    case NewDirectory::NameIsTaken:
      break;
    }
  }
  return std::nullopt;
}
