// Fuzzes the raw log: any bytes, through reader, statistics, table and report.

#include "tests/fuzz/Input.h"
#include "tests/fuzz/OutputFolder.h"
#include "tests/fuzz/Pages.h"

#include "results/Report.h"
#include "results/Statistics.h"

#include <algorithm>

using namespace corvane;
using namespace corvane::fuzz;
using corvane::test::readBytes;
using corvane::test::writeBytes;

// The reader reads blocks of this size. The header line may have any length, so
// that rows are cut by the end of a block.
static constexpr std::size_t blockSize = 262144;

static std::string makeLog(Input &input) {
  const bool acrossBlocks = input.below(8) == 1;
  const std::size_t before = input.byte();
  std::string log(acrossBlocks ? blockSize - before : 0, 'h');
  return log += input.remaining();
}

static std::size_t sampleCount(const ReportJob &job) {
  std::size_t count = 0;
  for (const ConfigResults &config : job.configs)
    for (const auto &[name, samples] : config.versions)
      count += samples.size();
  return count;
}

static std::size_t lineFeeds(const std::string &text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// Counts the lines without the header; the last one may lack its line feed.
static std::size_t rowCount(const std::string &log) {
  if (log.empty())
    return 0;
  return lineFeeds(log) - (log.back() == '\n' ? 1 : 0);
}

static void checkStatistics(const VersionStats &stats) {
  check(stats.samples.size() == stats.arrival.size(), "no sample is lost");
  check(std::is_sorted(stats.samples.begin(), stats.samples.end()),
        "samples are sorted");
  check(stats.min <= stats.median && stats.median <= stats.max,
        "the median is between the ends");
  check(stats.outliers.size() <= stats.samples.size(),
        "outliers are some of the samples");
}

static void checkRanking(const RankedConfig &config, std::size_t versions) {
  check(config.ranking.size() == versions, "each version has a rank");
  for (std::size_t i = 0; i != config.ranking.size(); ++i) {
    checkStatistics(config.ranking[i].second);
    check(i == 0 || config.ranking[i - 1].second.mean <=
                        config.ranking[i].second.mean,
          "the fastest version comes first");
  }
}

static Files filesIn(const std::filesystem::path &folder) {
  Files files;
  for (const auto &entry :
       std::filesystem::recursive_directory_iterator(folder))
    if (entry.is_regular_file() && entry.path().filename() != ".auto.csv")
      files[entry.path().lexically_relative(folder).generic_string()] =
          readBytes(entry.path());
  return files;
}

static void checkFiles(ReportJob unranked, const Files &expected) {
  std::filesystem::create_directory(unranked.outputDirectory + "/html");
  check(!writeResultFiles(unranked), "all files can be written");
  check(filesIn(unranked.outputDirectory) == expected,
        "a report is all its pages, and nothing else anywhere");
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static const OutputFolder folder;
  folder.empty();
  Input input(data, size);
  // Real files take far more time than the report itself, so only some inputs
  // have them.
  const bool onDisk = input.below(4) == 1;
  const std::string log = makeLog(input);

  ReportJob job;
  job.outputDirectory = folder.path().string();
  job.logPath = folder.file(".auto.csv");
  job.installLocation = "/opt/x";
  check(writeBytes(job.logPath, log), "the log can be written");
  check(!readRawLog(job.logPath, job.configs), "a log can be read");
  check(sampleCount(job) == rowCount(log), "each row is a sample");

  std::vector<RankedConfig> ranked;
  for (const ConfigResults &config : job.configs) {
    ranked.push_back(rankVersions(config));
    checkRanking(ranked.back(), config.versions.size());
  }
  const Files files = makeFiles(ranked, job.installLocation);
  check(lineFeeds(files.at("autotune.csv")) == 1 + rowCount(log),
        "each sample is a row of the table");
  checkNames(ranked, job.installLocation, files);
  if (onDisk)
    checkFiles(std::move(job), files);
  return 0;
}
