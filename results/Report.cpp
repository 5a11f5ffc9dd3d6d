// Ranks one configuration after the other and writes its rows and pages.

#include "results/Report.h"

#include "results/Files.h"
#include "results/NumberText.h"
#include "results/ResultFiles.h"
#include "results/report/PageLinks.h"
#include "results/report/Pages.h"

#include <algorithm>
#include <utility>

using namespace corvane;
using llvm::raw_ostream;

std::string corvane::normalizedLocation(std::string location) {
  std::replace(location.begin(), location.end(), '\\', '/');
  if (!location.empty() && location.front() == '"')
    location.erase(0, 1);
  if (!location.empty() && location.back() == '"')
    location.pop_back();
  return location;
}

llvm::Error corvane::createOutputFolder(const ReportJob &job) {
  return createFolder(job.outputDirectory);
}

llvm::Error corvane::createPageFolder(const ReportJob &job) {
  return createFolder(job.outputDirectory + platform::directorySeparator +
                      resultFile::pageFolder);
}

ResultsTable::ResultsTable(llvm::raw_ostream &stream) : out(stream) {
  // The column names are part of the interface, byte for byte.
  out << "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
         "coarsed_kernel,time,outlier\n";
}

LineRange ResultsTable::addRows(const RankedConfig &config) {
  LineRange range;
  range.first = nextRow;
  const std::string key = joinedFields(config.launchKey, ',');
  for (const auto &[version, stats] : config.ranking) {
    const std::string start = key + ',' + version + ',';
    for (double sample : stats.samples) {
      out << start;
      writeGeneral(out, sample);
      out << (isOutlier(sample, stats.min) ? ",*\n" : ", \n");
    }
    nextRow += stats.samples.size();
  }
  range.last = nextRow - 1;
  return range;
}

namespace {

/// Writes the files of one job and collects their errors.
class ReportWriter {
public:
  explicit ReportWriter(ReportJob &reportJob) : job(reportJob) {}

  llvm::Error write() {
    writeConfigs();
    addFile(pagePath(job.outputDirectory, resultFile::indexPage),
            [&](raw_ostream &out) { writeIndexPage(out, entries); });
    addFile(resultPath(job.outputDirectory, resultFile::mainPage),
            [&](raw_ostream &out) { writeMainPage(out, entries); });
    return std::move(errors);
  }

private:
  void writeConfigs();
  void writePages(const RankedConfig &config, LineRange lines);

  template <typename Write> void addFile(const std::string &path, Write write) {
    OutputFile out(path);
    write(out);
    keepError(out);
  }
  void keepError(OutputFile &file) {
    errors = llvm::joinErrors(std::move(errors), file.finish());
  }

  ReportJob &job;
  PageNames names;
  std::vector<IndexEntry> entries;
  llvm::Error errors = llvm::Error::success();
};

} // namespace

void ReportWriter::writeConfigs() {
  OutputFile file(resultPath(job.outputDirectory, resultFile::table));
  ResultsTable table(file);
  for (ConfigResults &config : job.configs) {
    // Taken out of the job: when the pages are written, the memory is free.
    const RankedConfig ranked =
        rankVersions(std::exchange(config, ConfigResults()));
    writePages(ranked, table.addRows(ranked));
  }
  keepError(file);
}

void ReportWriter::writePages(const RankedConfig &config, LineRange lines) {
  const std::string base = names.nameFor(config.launchKey);
  const auto path = [&](const char *ending) {
    return pagePath(job.outputDirectory, base + ending);
  };
  addFile(path(resultFile::graphPage), [&](raw_ostream &out) {
    writeGraphPage(out, config, job.installLocation);
  });
  addFile(path(resultFile::tablePage),
          [&](raw_ostream &out) { writeTablePage(out, config, lines); });
  addFile(path(resultFile::framePage),
          [&](raw_ostream &out) { writeFramePage(out, base); });
  entries.push_back(
      {configTitle(config.launchKey), base + resultFile::framePage});
}

llvm::Error corvane::writeResultFiles(ReportJob &job) {
  return ReportWriter(job).write();
}
