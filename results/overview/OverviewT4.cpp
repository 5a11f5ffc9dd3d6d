// Writes an overview by the auto-tuning community's schema for results, T4.

#include "results/overview/Exports.h"

#include "results/runs/Json.h"
#include "results/runs/RunWriter.h"

using namespace corvane;
namespace json = llvm::json;

// All times of the schema are in milliseconds.
static constexpr double perMillisecond = 1000.0;

static void writeConfiguration(json::OStream &out, const Overview &overview,
                               const OverviewConfiguration &configuration,
                               const OverviewVersion &version) {
  writeTextField(out, "kernel", configuration.kernel);
  writeTextField(out, "version", versionInFile(version.figures.version));
  writeTextField(out, "sizes", sizesText(configuration.sizes));
  const DeviceLine &device = overview.devices[configuration.device];
  writeTextField(out, "device", device.name);
  writeTextField(out, "driver", device.driver);
  writeTextField(out, "program",
                 overview.programs[configuration.program].line.hash);
}

static void writeMeasurement(json::OStream &out, llvm::StringRef name,
                             double value, llvm::StringRef unit) {
  out.object([&] {
    out.attribute("name", name);
    writeNumberField(out, "value", value);
    out.attribute("unit", unit);
  });
}

static void writeResult(json::OStream &out, const Overview &overview,
                        const OverviewConfiguration &configuration,
                        const OverviewVersion &version) {
  const bool isWrong = version.check == Agreement::Different;
  out.attributeObject("configuration", [&] {
    writeConfiguration(out, overview, configuration, version);
  });
  out.attributeObject("times", [&] {
    out.attributeArray("runtimes", [&] {
      for (double sample : version.samples)
        writeNumber(out, sample / perMillisecond);
    });
  });
  out.attribute("invalidity", isWrong ? "correctness" : "correct");
  out.attribute("correctness", isWrong ? 0 : 1);
  out.attributeArray("measurements", [&] {
    if (version.figures.samples != 0)
      writeMeasurement(out, "time", version.figures.median / perMillisecond,
                       "ms");
    writeMeasurement(out, "launches",
                     static_cast<double>(configuration.launches), "");
  });
  out.attributeArray("objectives", [&] { out.value("time"); });
}

void corvane::writeOverviewT4(llvm::raw_ostream &stream,
                              const Overview &overview) {
  json::OStream out(stream);
  out.object([&] {
    out.attribute("schema_version", "1.0.0");
    out.attributeArray("results", [&] {
      for (const OverviewConfiguration &configuration : overview.configurations)
        for (const OverviewVersion &version : configuration.versions)
          if (version.figures.samples != 0 ||
              version.check == Agreement::Different)
            out.object(
                [&] { writeResult(out, overview, configuration, version); });
    });
  });
}
