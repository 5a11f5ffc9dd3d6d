// The graph page: a script draws the samples in the order of the log.

#include "results/NumberText.h"
#include "results/report/Pages.h"
#include "results/report/SafeText.h"

using namespace corvane;

static void writeHead(llvm::raw_ostream &out,
                      const std::string &installLocation) {
  out << "<!DOCTYPE html><html>\n"
         "<head>\n"
         "<script type=\"text/javascript\" src=\"file://"
      << attributePath(installLocation)
      << "/dygraph-combined.js\"></script>\n"
         "<style type=\"text/css\">\n"
         "#graphdiv { position: absolute; left: 10px; right: 100px; "
         "top: 10px; bottom: 10px;}\n"
         "#checkdiv { float: right; width: 80px;}\n"
         "</style>\n"
         "</head>\n";
}

// At first only the fastest version and the original are shown.
static bool isVisible(const RankedConfig &config, std::size_t rank) {
  return rank == 0 || config.ranking[rank].first == baselineName;
}

static void writeCheckboxes(llvm::raw_ostream &out,
                            const RankedConfig &config) {
  for (std::size_t i = 0; i != config.ranking.size(); ++i)
    out << "<input type=checkbox id=\"" << i
        << (isVisible(config, i) ? "\" checked" : "\"")
        << " onClick=\"change(this)\"><label for=\"" << i << "\"> "
        << htmlText(config.ranking[i].first) << " </label><br/>\n";
}

// A sum of string literals that make up a table with a column a version, as
// many rows as the version with the fewest samples has.
static void writeData(llvm::raw_ostream &out, const RankedConfig &config) {
  out << "\"iter";
  for (const auto &[name, stats] : config.ranking)
    out << "," << scriptText(name);
  out << "\\n\"\n";
  const std::size_t count = config.sampleCount();
  for (std::size_t i = 0; i != count; ++i) {
    out << "+ \"" << i + 1;
    for (const auto &[name, stats] : config.ranking) {
      out << ',';
      writeGeneral(out, stats.arrival[i]);
    }
    out << "\\n\"\n";
  }
}

static void writeVisibility(llvm::raw_ostream &out,
                            const RankedConfig &config) {
  for (std::size_t i = 0; i != config.ranking.size(); ++i)
    out << (i == 0 ? "" : ",") << (isVisible(config, i) ? "true" : "false");
}

static void writeScript(llvm::raw_ostream &out, const RankedConfig &config) {
  out << "<script type=\"text/javascript\">\n"
         "g = new Dygraph(document.getElementById(\"graphdiv\"),";
  writeData(out, config);
  out << ",\n"
         "{ includeZero: true, digitsAfterDecimal: 3, drawPoints: true, "
         "ylabel: 'Time:(us)', legend: 'always', visibility: [";
  writeVisibility(out, config);
  out << "]});\n"
         "function change(el) { g.setVisibility(parseInt(el.id), "
         "el.checked);}\n"
         "</script>\n";
}

void corvane::writeGraphPage(llvm::raw_ostream &out, const RankedConfig &config,
                             const std::string &installLocation) {
  writeHead(out, installLocation);
  out << "<body>\n"
         "<div id=\"graphdiv\"></div>\n"
         "<div id=\"checkdiv\">\n"
         "<p><b> Show series: </b><br/>\n";
  writeCheckboxes(out, config);
  out << "</p></div>";
  writeScript(out, config);
  out << "</body></html>";
}
