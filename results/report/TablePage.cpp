// The table page: one row a version, coloured by whether it beats the original.

#include "results/NumberText.h"
#include "results/ResultFiles.h"
#include "results/report/PageLinks.h"
#include "results/report/Pages.h"
#include "results/report/SafeText.h"

using namespace corvane;

namespace {

/// The colour of the rows that were written last.
enum class RowGroup { None, Lime, Faded, Orange };

} // namespace

static void writeCaption(llvm::raw_ostream &out, const RankedConfig &config,
                         LineRange lines) {
  // The title begins with the kernel's name too: it is written twice.
  out << "<thead> <th colspan = \"11\" align=\"left\">"
      << htmlText(config.launchKey.kernel + configTitle(config.launchKey))
      << "called " << config.sampleCount() << " times"
      << "<a href=\"../" << resultFile::table << "\"> (See details (line "
      << lines.first << "-" << lines.last << ")) </a> </th> <tr> </thead>\n";
}

static void writeColumnNames(llvm::raw_ostream &out) {
  for (const char *name :
       {"Version", "NumSamples/Total", "Min", "Speedup", "Max", "Speedup",
        "Median", "Speedup", "Mean", "Speedup", "stddev"})
    out << "<th>" << name << "</th>";
  out << "\n";
}

// Variants faster than the original are lime, the original is faded, and the
// slower variants are orange.
static RowGroup openGroup(llvm::raw_ostream &out, RowGroup group,
                          bool isBaseline) {
  if (isBaseline) {
    if (group == RowGroup::Lime)
      out << "</tbody>\n";
    out << "<tbody style=\"filter:alpha(opacity=40);-moz-opacity:.40;"
           "opacity:.40;\">\n";
    return RowGroup::Faded;
  }
  if (group == RowGroup::None) {
    out << "<tbody style=\"background-color:lime\">\n";
    return RowGroup::Lime;
  }
  if (group == RowGroup::Faded) {
    out << "</tbody>\n<tbody style=\"background-color:orange\">\n";
    return RowGroup::Orange;
  }
  return group;
}

// Above 1 the version is faster than the original. 0.0 where it is undefined.
static double speedup(double baseline, double value) {
  return baseline == 0.0 || value == 0.0 ? 0.0 : baseline / value;
}

// The count is written twice, and is that of the whole configuration. A row has
// no end tag and no line feed.
static void writeRow(llvm::raw_ostream &out, const std::string &name,
                     const VersionStats &stats, const VersionStats &baseline,
                     std::size_t count) {
  out << "<tr align=\"center\"><th>" << htmlText(name)
      << "</th><td align=\"center\">" << count << "/" << count << "</td>";
  for (double VersionStats::*value :
       {&VersionStats::min, &VersionStats::max, &VersionStats::median,
        &VersionStats::mean})
    out << "<td> " << fixedText(stats.*value, 3) << " </td><td> "
        << fixedText(speedup(baseline.*value, stats.*value), 1) << "x </td>";
  out << "<td> " << fixedText(stats.stddev, 3) << " </td>";
}

static void writeRows(llvm::raw_ostream &out, const RankedConfig &config) {
  const VersionStats none;
  const VersionStats *found = config.baseline();
  const VersionStats &baseline = found ? *found : none;
  const std::size_t count = config.sampleCount();
  RowGroup group = RowGroup::None;
  for (const auto &[name, stats] : config.ranking) {
    group = openGroup(out, group, name == baselineName);
    writeRow(out, name, stats, baseline, count);
  }
}

void corvane::writeTablePage(llvm::raw_ostream &out, const RankedConfig &config,
                             LineRange lines) {
  out << "<html><body>\n"
         "<table style=\"border:3px solid\" align=\"left\" cellpadding=\"5\" "
         "frame=\"border\" rules=\"groups\">\n"
         "<colgroup></colgroup>\n"
         "<colgroup></colgroup>\n"
         "<colgroup span = \"2\"></colgroup>\n"
         "<colgroup span = \"2\"></colgroup>\n"
         "<colgroup span = \"2\"></colgroup>\n"
         "<colgroup span = \"2\"></colgroup>\n";
  writeCaption(out, config, lines);
  writeColumnNames(out);
  writeRows(out, config);
  out << "</tbody>\n</table></body></html>\n";
}
