// Tells rows apart by their text and splits each kind of text once.

#include "results/RowCollector.h"

#include "results/NumberText.h"

#include "llvm/ADT/StringRef.h"

using namespace corvane;

// The kernel and its six sizes; the version and the time follow.
static constexpr std::size_t keyFields = 7;

void RowCollector::add(std::string_view line) {
  Kind &kind = kindOf(line);
  ++kind.count;
  rows.push_back({&kind, leadingNumber(line.substr(timeBegin))});
}

// Programs launch in loops: what followed a row the last time mostly follows it
// again. Then nothing has to be looked up.
RowCollector::Kind &RowCollector::kindOf(std::string_view line) {
  const std::size_t comma = line.rfind(',');
  Kind *&follower = last->follower;
  if (follower && line.substr(0, comma) == follower->text)
    timeBegin = comma + 1;
  else
    follower = &findOrAdd(textOfKind(line));
  last = follower;
  return *last;
}

// Also finds where the time begins. The commas that a line lacks are added.
std::string_view RowCollector::textOfKind(std::string_view line) {
  std::size_t commas = 0;
  for (std::size_t i = 0; i != line.size(); ++i)
    if (line[i] == ',' && ++commas == keyFields + 1) {
      timeBegin = i + 1;
      return line.substr(0, i);
    }
  timeBegin = line.size();
  padded = line;
  padded.append(keyFields - commas, ',');
  return padded;
}

RowCollector::Kind &RowCollector::findOrAdd(std::string_view text) {
  const auto found = kindsByText.find(text);
  if (found != kindsByText.end())
    return *found->second;
  Kind &added = kinds.emplace_back();
  added.text = text;
  kindsByText.emplace(added.text, &added);
  return added;
}

static ConfigResults makeConfig(llvm::StringRef key) {
  ConfigResults config;
  for (std::string *field :
       {&config.kernel, &config.xGlobal, &config.yGlobal, &config.zGlobal,
        &config.xLocal, &config.yLocal, &config.zLocal}) {
    const auto [text, rest] = key.split(',');
    *field = text.str();
    key = rest;
  }
  return config;
}

void RowCollector::moveTo(std::vector<ConfigResults> &configs) {
  std::unordered_map<std::string_view, std::size_t> positions;
  for (const Kind &kind : kinds) {
    const llvm::StringRef key = llvm::StringRef(kind.text).rsplit(',').first;
    if (positions.try_emplace(key, configs.size()).second)
      configs.push_back(makeConfig(key));
  }
  for (Kind &kind : kinds) {
    const auto [key, version] = llvm::StringRef(kind.text).rsplit(',');
    ConfigResults &config = configs[positions.at(key)];
    auto &samples = config.versions[version.str()].samples;
    samples.resize(kind.count);
    kind.nextSample = samples.data();
  }
  for (const Row &row : rows)
    *row.kind->nextSample++ = row.time;
}
