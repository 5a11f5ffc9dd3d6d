// The order of work of the report, one configuration after the other.

#include "results/ReportWriter.h"

#include "results/OutputFile.h"
#include "results/ResultsTable.h"
#include "results/Statistics.h"
#include "results/report/PageNames.h"
#include "results/report/Pages.h"

using namespace corvane;

static std::string pagePath(const ReportJob &job, const std::string &name) {
  return job.outputDirectory + "/html/" + name;
}

static IndexEntry writePages(const ReportJob &job, const ConfigResults &config,
                             const std::string &base, LineRange lines) {
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
  PageNames names;
  for (ConfigResults &config : job.configs) {
    rankVersions(config);
    const LineRange lines = table.addRows(config);
    entries.push_back(writePages(job, config, names.nameFor(config), lines));
    // Nobody needs it again, and the next one finds room in its place.
    config = ConfigResults();
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
