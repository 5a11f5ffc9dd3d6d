// Writes rows of the log, and gathers the samples of each configuration.

#include "results/RawTimingLog.h"

#include "results/Files.h"
#include "results/NumberText.h"

#include <algorithm>
#include <deque>
#include <type_traits>
#include <unordered_map>

using namespace corvane;

// The column names are part of the interface, byte for byte.
const std::string_view corvane::rawLogHeader =
    "kernel,x_global,y_global,z_global,x_local,y_local,z_local,coarsed_kernel,"
    "time\n";

// Below this the time in microseconds as a double, printed with three decimals,
// has the digits of the nanoseconds.
static constexpr std::uint64_t mostExactNanoseconds = 1'000'000'000'000'000;

std::string corvane::timeText(std::uint64_t nanoseconds) {
  if (nanoseconds < mostExactNanoseconds) {
    std::string text = std::to_string(nanoseconds);
    text.insert(0, 4 - std::min<std::size_t>(text.size(), 4), '0');
    return text.insert(text.size() - 3, 1, '.');
  }
  return fixedText(static_cast<double>(nanoseconds) / 1000.0, 3);
}

std::string corvane::rawLogRow(std::string_view fields,
                               std::string_view version,
                               std::uint64_t nanoseconds) {
  std::string row(fields);
  row += ',';
  row += version.empty() ? baselineName : version;
  row += ',';
  row += timeText(nanoseconds);
  row += '\n';
  return row;
}

namespace {

/// Adds rows to the configurations that they belong to.
class RowCollector {
public:
  explicit RowCollector(std::vector<ConfigResults> &addTo) : configs(addTo) {}

  void add(std::string_view line);

private:
  Samples &samplesOf(std::string_view keyAndVersion);
  std::map<std::string, Samples, std::less<>> &
  versionsOf(std::string_view fields);

  std::vector<ConfigResults> &configs;
  std::deque<std::string> texts; ///< own the keys of the two tables
  std::unordered_map<std::string_view, std::size_t> configByFields;
  /// By the text of a row before its time. Finds most rows in one step.
  std::unordered_map<std::string_view, Samples *> samplesByText;
};

} // namespace

// samplesByText points into the configurations. A vector that grows must move
// them: then their lists of samples keep their places.
static_assert(std::is_nothrow_move_constructible_v<ConfigResults>);

static constexpr std::size_t commasBeforeTime = LaunchKey::fieldCount + 1;

void RowCollector::add(std::string_view line) {
  std::size_t commas = 0;
  const auto beforeTime =
      std::find_if(line.begin(), line.end(), [&commas](char c) {
        return c == ',' && ++commas == commasBeforeTime;
      });
  const auto length = static_cast<std::size_t>(beforeTime - line.begin());
  if (commas == commasBeforeTime) {
    samplesOf(line.substr(0, length))
        .push_back(leadingNumber(line.substr(length + 1)));
    return;
  }
  // The commas that the line lacks are added.
  std::string padded(line);
  padded.append(LaunchKey::fieldCount - commas, ',');
  samplesOf(padded).push_back(0.0);
}

Samples &RowCollector::samplesOf(std::string_view keyAndVersion) {
  const auto known = samplesByText.find(keyAndVersion);
  if (known != samplesByText.end())
    return *known->second;
  const std::string_view text = texts.emplace_back(keyAndVersion);
  const std::size_t comma = text.rfind(',');
  Samples &samples =
      versionsOf(text.substr(0, comma))[std::string(text.substr(comma + 1))];
  samplesByText.emplace(text, &samples);
  return samples;
}

std::map<std::string, Samples, std::less<>> &
RowCollector::versionsOf(std::string_view fields) {
  const auto [found, isNew] =
      configByFields.try_emplace(fields, configs.size());
  if (isNew)
    configs.push_back({splitFields(fields), {}});
  return configs[found->second].versions;
}

llvm::Error corvane::readRawLog(const std::string &path,
                                std::vector<ConfigResults> &configs) {
  LineReader lines(path);
  std::string_view line;
  lines.next(line); // the header
  RowCollector rows(configs);
  while (lines.next(line))
    rows.add(line);
  return lines.takeError();
}
