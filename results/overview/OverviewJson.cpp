// Writes an overview as JSON, an object for each run, device, program and
// configuration.

#include "results/overview/Exports.h"

#include "results/overview/Reasons.h"
#include "results/overview/VariantWords.h"

#include "results/profile/ProfileFile.h"
#include "results/runs/Json.h"
#include "results/runs/RunWriter.h"
#include "results/runs/SizeFields.h"

using namespace corvane;
namespace json = llvm::json;

static void writeTexts(json::OStream &out, llvm::StringRef key,
                       const std::vector<std::string> &texts) {
  out.attributeArray(key, [&] {
    for (const std::string &text : texts)
      out.value(json::fixUTF8(text));
  });
}

static void writeProcess(json::OStream &out, const ProcessLine &process) {
  writeTextField(out, "program", process.program);
  writeTextField(out, "host", process.host);
  out.attribute("pid", json::Value(process.pid));
  writeTextField(out, "start", process.start);
  writeTextField(out, "library", process.library);
  if (process.rank)
    out.attribute("rank", json::Value(*process.rank));
  out.attributeObject("settings", [&] {
    for (const auto &[name, value] : process.settings)
      writeTextField(out, name, value);
  });
}

static void write(json::OStream &out, const OverviewRun &run) {
  writeTextField(out, "name", run.origin.name);
  out.attribute("source", run.origin.isLog ? "log" : "record");
  writeTexts(out, "command", run.origin.command);
  if (run.process && !run.origin.isLog)
    writeProcess(out, *run.process);
  out.attribute("ended", run.end.has_value());
  if (run.end) {
    out.attribute("launches", json::Value(run.end->launches));
    out.attribute("tunedLaunches", json::Value(run.end->tunedLaunches));
    writeNumberField(out, "secondsAdded", run.end->secondsAdded);
  }
  out.attribute("unusableLines",
                json::Value(static_cast<std::uint64_t>(run.problems)));
}

static void write(json::OStream &out, const DeviceLine &device) {
  writeTextField(out, "name", device.name);
  writeTextField(out, "vendor", device.vendor);
  writeTextField(out, "version", device.version);
  writeTextField(out, "driver", device.driver);
  writeTextField(out, "type", device.type);
  out.attribute("units", device.units);
  out.attribute("localMemory", json::Value(device.localMemory));
}

static void write(json::OStream &out, const KernelVariants &kernel) {
  writeTextField(out, "kernel", kernel.kernel);
  out.attributeArray("variants", [&] {
    for (const std::string &spec : kernel.variants)
      out.object([&] {
        writeTextField(out, "spec", spec);
        writeTextField(out, "words", variantWords(spec));
      });
  });
}

static void write(json::OStream &out, const OverviewProgram &program) {
  const ProgramLine &line = program.line;
  writeTextField(out, "hash", line.hash);
  writeTextField(out, "options", line.options);
  out.attribute("spills", line.spills);
  if (!line.whyNotGenerated.empty())
    writeTextField(out, "notGenerated", line.whyNotGenerated);
  out.attributeArray("kernels", [&] {
    for (const KernelVariants &kernel : line.kernels)
      out.object([&] { write(out, kernel); });
  });
  out.attributeArray("lookAlikes", [&] {
    for (const LookAlike &kernel : line.lookAlikes)
      out.object([&] {
        writeTextField(out, "name", kernel.name);
        writeTextField(out, "reason", kernel.reason);
      });
  });
}

static void write(json::OStream &out, const CheckLine &check) {
  out.attributeObject("difference", [&] {
    out.attribute("argument", check.argument);
    out.attribute("element", json::Value(check.element));
    writeTextField(out, "expected", check.expected);
    writeTextField(out, "actual", check.actual);
  });
}

static void write(json::OStream &out,
                  const OverviewConfiguration &configuration,
                  const OverviewVersion &version) {
  const VersionFigures &figures = version.figures;
  writeTextField(out, "version", versionInFile(figures.version));
  out.attribute("verdict", verdictText(version.verdict));
  out.attribute("check", agreementText(version.check));
  out.attribute("launches", json::Value(version.launches));
  if (figures.samples != 0)
    writeNumberField(out, "median", figures.median);
  if (figures.interval)
    out.attributeArray("interval", [&] {
      writeNumber(out, figures.interval->low);
      writeNumber(out, figures.interval->high);
    });
  if (version.difference)
    write(out, *version.difference);
  if (const std::string why = whyText(configuration, version); !why.empty())
    writeTextField(out, "why", why);
  out.attributeArray("samples", [&] {
    for (double sample : version.samples)
      writeNumber(out, sample);
  });
}

static void write(json::OStream &out,
                  const OverviewConfiguration &configuration) {
  writeTextField(out, "kernel", configuration.kernel);
  writeSizes(out, configuration.sizes);
  out.attribute("device",
                json::Value(static_cast<std::uint64_t>(configuration.device)));
  out.attribute("program",
                json::Value(static_cast<std::uint64_t>(configuration.program)));
  out.attribute("launches", json::Value(configuration.launches));
  writeNumberField(out, "time", configuration.originalTime());
  writeNumberField(out, "timeWithWinner", configuration.winningTime());
  out.attribute("outcome", outcomeText(configuration.outcome));
  writeTextField(out, "winner", versionInFile(configuration.winner));
  writeTextField(out, "why", whyText(configuration));
  out.attributeArray("versions", [&] {
    for (const OverviewVersion &version : configuration.versions)
      out.object([&] { write(out, configuration, version); });
  });
}

template <typename Element>
static void writeList(json::OStream &out, llvm::StringRef key,
                      const std::vector<Element> &elements) {
  out.attributeArray(key, [&] {
    for (const Element &element : elements)
      out.object([&] { write(out, element); });
  });
}

void corvane::writeOverviewJson(llvm::raw_ostream &stream,
                                const Overview &overview) {
  json::OStream out(stream);
  out.object([&] {
    out.attribute("format", "corvane-report");
    out.attribute("version", overviewFormatVersion);
    out.attribute("launches", json::Value(overview.launches()));
    writeNumberField(out, "time", overview.originalTime());
    writeNumberField(out, "timeWithWinners", overview.winningTime());
    writeTextField(out, "remark", remarkOn(overview));
    writeTexts(out, "obstacles", obstaclesIn(overview, 3));
    writeList(out, "runs", overview.runs);
    writeList(out, "devices", overview.devices);
    writeList(out, "programs", overview.programs);
    writeList(out, "configurations", overview.configurations);
  });
}
