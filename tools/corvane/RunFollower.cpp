// Reads the lines that were added to the records, and counts.

#include "tools/corvane/RunFollower.h"

#include "base/Platform.h"
#include "results/ResultFiles.h"
#include "tools/corvane/ShallowJson.h"
#include "tools/corvane/TunedFolder.h"

#include "llvm/ADT/SmallString.h"
#include "llvm/Support/Path.h"

#include <cmath>
#include <vector>

using namespace corvane;
namespace json = llvm::json;

// What one look may read, and how long a line may be.
static constexpr std::size_t mostBytes = std::size_t(4) << 20;

void RunFollower::update() {
  for (const std::string &name : runNames(folder)) {
    if (before.count(name))
      continue;
    llvm::SmallString<256> file(folder);
    llvm::sys::path::append(file, resultFile::runFolder, name,
                            resultFile::runRecord);
    readMore(file.str().str(), runs[name]);
  }
}

void RunFollower::readMore(const std::string &file, Run &run) {
  const platform::OpenedFile opened =
      platform::openRegularFile(file, platform::FileUse::Read);
  if (!opened.file ||
      std::fseek(opened.file.get(), static_cast<long>(run.position),
                 SEEK_SET) != 0)
    return;
  std::vector<char> bytes(mostBytes);
  const std::size_t count =
      std::fread(bytes.data(), 1, bytes.size(), opened.file.get());
  run.position += count;
  run.half.append(bytes.data(), count);
  llvm::StringRef text = run.half;
  while (text.contains('\n')) {
    const auto [line, rest] = text.split('\n');
    takeLine(line, run);
    text = rest;
  }
  run.half = text.size() < mostBytes ? text.str() : std::string();
}

static std::int64_t numberOf(const json::Object &line) {
  const auto number = line.getInteger("configuration");
  return number ? *number : 0;
}

// 0 if there is no such time.
static double timeIn(const json::Object &line, llvm::StringRef key) {
  const auto time = line.getNumber(key);
  return time && std::isfinite(*time) && *time > 0.0 ? *time : 0.0;
}

void RunFollower::takeLine(llvm::StringRef text, Run &run) {
  const std::optional<json::Value> value = parseShallowJson(text);
  const json::Object *const line = value ? value->getAsObject() : nullptr;
  const auto kind = line ? line->getString("kind") : llvm::StringRef();
  if (!line || !kind)
    return;
  if (*kind == "configuration" && !line->get("untunable")) {
    const auto kernel = line->getString("kernel");
    if (run.kernels.try_emplace(numberOf(*line), kernel ? kernel->str() : "")
            .second)
      ++configurations;
  } else if (*kind == "sample") {
    ++timedRuns;
    microseconds += timeIn(*line, "microseconds");
  } else if (*kind == "decision") {
    takeDecision(*line, run);
  }
}

// The median of one version in a decision; 0 if it is not there.
static double medianOf(const json::Object &decision, llvm::StringRef version) {
  if (const json::Array *const versions = decision.getArray("versions"))
    for (const json::Value &each : *versions)
      if (const json::Object *const object = each.getAsObject())
        if (object->getString("version") == version)
          return timeIn(*object, "median");
  return 0.0;
}

void RunFollower::takeDecision(const json::Object &line, Run &run) {
  const std::int64_t number = numberOf(line);
  if (run.decided.insert(number).second)
    ++decisions;
  const auto winner = line.getString("winner");
  if (!winner)
    return;
  const double original = medianOf(line, "baseline");
  const double time = medianOf(line, *winner);
  if (time > 0.0 && original / time > best && *winner != "baseline") {
    best = original / time;
    kernelOfBest = run.kernels[number];
  }
}
