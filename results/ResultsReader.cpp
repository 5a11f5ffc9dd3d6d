// Hands the log's lines to whoever groups them.

#include "results/ResultsReader.h"

#include "results/LineReader.h"
#include "results/RowCollector.h"

using namespace corvane;

int corvane::readCSV(ReportJob &job) {
  LineReader log(job.logPath);
  log.next(); // the header
  RowCollector rows;
  while (const std::optional<std::string_view> line = log.next())
    rows.add(*line);
  rows.moveTo(job.configs);
  return 0;
}
