// The order of work of the report, one configuration after the other.

#include "results/ReportWriter.h"

#include "agent/platform/Platform.h"
#include "results/OutputFile.h"
#include "results/ResultsTable.h"
#include "results/Statistics.h"
#include "results/report/Pages.h"

using namespace corvane;

// A log that somebody edited may name a kernel after a path. Such a page would
// land outside the report; it counts as one that cannot be created.
static bool isFileName(const std::string &name) {
  return name.find('/') == std::string::npos &&
         name.find(platform::directorySeparator) == std::string::npos &&
         name.find('\0') == std::string::npos;
}

static std::string pagePath(const ReportJob &job, const std::string &name) {
  return isFileName(name) ? job.outputDirectory + "/html/" + name : "";
}

static IndexEntry writePages(const ReportJob &job, const ConfigResults &config,
                             LineRange lines) {
  const std::string base = pageBase(config);
  {
    OutputFile out(pagePath(job, base + "_graph.html"));
    writeGraphPage(out, config, job.installLocation);
  }
  {
    OutputFile out(pagePath(job, base + "_table.html"));
    writeTablePage(out, config, lines);
  }
  OutputFile out(pagePath(job, base + ".html"));
  writeFramePage(out, base);
  return {configTitle(config), base + ".html"};
}

static std::vector<IndexEntry> writeConfigs(ReportJob &job) {
  OutputFile tableFile(job.outputDirectory + "/autotune.csv");
  ResultsTable table(tableFile);
  std::vector<IndexEntry> entries;
  for (ConfigResults &config : job.configs) {
    rankVersions(config);
    const LineRange lines = table.addRows(config);
    entries.push_back(writePages(job, config, lines));
  }
  return entries;
}

int corvane::writeReport(ReportJob &job) {
  const std::vector<IndexEntry> entries = writeConfigs(job);
  OutputFile index(pagePath(job, "index.html"));
  writeIndexPage(index, entries);
  OutputFile main(job.outputDirectory + "/main.html");
  writeMainPage(main, entries);
  return 0;
}
