// Writes the header and the rows of the results table.

#include "results/ResultsTable.h"

#include "results/NumberText.h"

using namespace corvane;

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
