// Writes the rows of the results table.

#include "results/ResultsTable.h"

#include "results/NumberText.h"
#include "results/Statistics.h"

using namespace corvane;

ResultsTable::ResultsTable(llvm::raw_ostream &stream) : out(stream) {
  // The column names are part of the interface, byte for byte.
  out << "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
         "coarsed_kernel,time,outlier\n";
}

static std::string rowStart(const ConfigResults &config,
                            const std::string &version) {
  std::string start;
  for (const std::string *field :
       {&config.kernel, &config.xGlobal, &config.yGlobal, &config.zGlobal,
        &config.xLocal, &config.yLocal, &config.zLocal, &version}) {
    start += *field;
    start += ',';
  }
  return start;
}

LineRange ResultsTable::addRows(const ConfigResults &config) {
  LineRange range;
  range.first = nextRow;
  for (const auto &[version, stats] : config.ranking) {
    const std::string start = rowStart(config, version);
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
