// Writes an overview as comma-separated values.

#include "results/overview/Exports.h"

#include "results/NumberText.h"
#include "results/overview/Reasons.h"
#include "results/overview/VariantWords.h"
#include "results/profile/ProfileFile.h"
#include "results/runs/RunWriter.h"

using namespace corvane;

// A field in quotation marks may hold anything, quotation marks doubled.
static void writeField(llvm::raw_ostream &out, llvm::StringRef text) {
  if (text.find_first_of(",\"\r\n") == llvm::StringRef::npos) {
    out << text;
    return;
  }
  out << '"';
  for (char character : text) {
    if (character == '"')
      out << '"';
    out << character;
  }
  out << '"';
}

namespace {

/// Writes the fields of one line with commas between them.
class CsvLine {
public:
  explicit CsvLine(llvm::raw_ostream &stream) : out(stream) {}
  ~CsvLine() { out << '\n'; }
  CsvLine(const CsvLine &) = delete;
  CsvLine &operator=(const CsvLine &) = delete;

  CsvLine &text(llvm::StringRef field) {
    writeField(next(), field);
    return *this;
  }
  CsvLine &whole(std::uint64_t number) {
    next() << number;
    return *this;
  }
  CsvLine &number(double value) {
    writeGeneral(next(), value);
    return *this;
  }
  CsvLine &nothing() {
    next();
    return *this;
  }

private:
  llvm::raw_ostream &next() {
    if (!isFirst)
      out << ',';
    isFirst = false;
    return out;
  }

  llvm::raw_ostream &out;
  bool isFirst = true;
};

} // namespace

static void writeRow(llvm::raw_ostream &out, const Overview &overview,
                     const OverviewConfiguration &configuration,
                     const OverviewVersion &version) {
  const DeviceLine &device = overview.devices[configuration.device];
  const VersionFigures &figures = version.figures;
  CsvLine line(out);
  line.text(configuration.kernel)
      .text(sizesText(configuration.sizes))
      .text(device.name)
      .text(device.driver)
      .text(overview.programs[configuration.program].line.hash)
      .whole(configuration.launches)
      .text(outcomeText(configuration.outcome))
      .text(versionInFile(figures.version))
      .text(variantWords(figures.version))
      .text(verdictText(version.verdict))
      .whole(figures.samples);
  if (figures.samples != 0)
    line.number(figures.median);
  else
    line.nothing();
  if (figures.interval)
    line.number(figures.interval->low).number(figures.interval->high);
  else
    line.nothing().nothing();
  line.text(agreementText(version.check)).text(whyText(configuration, version));
}

void corvane::writeOverviewCsv(llvm::raw_ostream &out,
                               const Overview &overview) {
  out << "kernel,sizes,device,driver,program,launches,outcome,version,words,"
         "verdict,samples,median_us,ratio_low,ratio_high,check,reason\n";
  for (const OverviewConfiguration &configuration : overview.configurations)
    for (const OverviewVersion &version : configuration.versions)
      writeRow(out, overview, configuration, version);
}
