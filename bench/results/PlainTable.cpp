// Reads with getline, groups by ordered maps, writes with streams.

#include "bench/results/PlainTable.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <numeric>
#include <sstream>
#include <vector>

using namespace corvane::bench;

namespace {
using Samples = std::vector<double>;

/// The samples of one version by its name.
using Configuration = std::map<std::string, Samples>;

/// The configurations by their sizes, and in the order in which they came.
struct Log {
  std::map<std::string, Configuration> byKey;
  std::vector<std::string> order;
};
} // namespace

static Log readLog(const std::string &path) {
  Log log;
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    std::string key;
    std::string field;
    for (int i = 0; i != 7 && std::getline(fields, field, ','); ++i)
      key += field + ',';
    std::string version;
    std::getline(fields, version, ',');
    double time = 0.0;
    fields >> time;
    const auto [found, isNew] = log.byKey.try_emplace(key);
    if (isNew)
      log.order.push_back(key);
    found->second[version].push_back(time);
  }
  return log;
}

static double meanOf(const Samples &samples) {
  return std::accumulate(samples.begin(), samples.end(), 0.0) /
         static_cast<double>(samples.size());
}

static void writeRows(std::ostream &table, const std::string &key,
                      Configuration &configuration) {
  std::multimap<double, std::string> byMean;
  for (auto &[version, samples] : configuration) {
    std::sort(samples.begin(), samples.end());
    byMean.emplace(meanOf(samples), version);
  }
  for (const auto &[mean, version] : byMean)
    for (const double sample : configuration[version])
      table << key << version << ',' << sample << ','
            << (sample > 3.0 * configuration[version].front() ? '*' : ' ')
            << '\n';
}

void corvane::bench::writePlainTable(const std::string &logPath,
                                     const std::string &tablePath) {
  Log log = readLog(logPath);
  std::ofstream table(tablePath);
  table << "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
           "coarsed_kernel,time,outlier\n";
  for (const std::string &key : log.order)
    writeRows(table, key, log.byKey[key]);
}
