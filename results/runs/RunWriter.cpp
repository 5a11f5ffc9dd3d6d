// Writes each kind of line as a JSON object.

#include "results/runs/RunWriter.h"

#include "results/RawTimingLog.h"
#include "results/runs/Json.h"
#include "results/runs/SizeFields.h"

#include "llvm/Support/raw_ostream.h"

using namespace corvane;
namespace json = llvm::json;

llvm::StringRef corvane::versionInFile(llvm::StringRef version) {
  return version.empty() ? llvm::StringRef(baselineName) : version;
}

static void writeVersion(json::OStream &out, const std::string &version) {
  writeTextField(out, "version", versionInFile(version));
}

static void write(json::OStream &out, const ProcessLine &line) {
  out.attribute("kind", "process");
  out.attribute("format", "corvane-run");
  out.attribute("version", line.version);
  writeTextField(out, "library", line.library);
  writeTextField(out, "program", line.program);
  writeTextField(out, "host", line.host);
  out.attribute("pid", json::Value(line.pid));
  writeTextField(out, "start", line.start);
  if (line.rank)
    out.attribute("rank", json::Value(*line.rank));
  out.attributeObject("settings", [&] {
    for (const auto &[name, value] : line.settings)
      writeTextField(out, name, value);
  });
}

static void write(json::OStream &out, const DeviceLine &line) {
  out.attribute("kind", "device");
  out.attribute("device", line.device);
  writeTextField(out, "name", line.name);
  writeTextField(out, "vendor", line.vendor);
  writeTextField(out, "version", line.version);
  writeTextField(out, "driver", line.driver);
  writeTextField(out, "type", line.type);
  out.attribute("units", line.units);
  out.attribute("localMemory", json::Value(line.localMemory));
}

static void write(json::OStream &out, const KernelVariants &kernel) {
  out.object([&] {
    writeTextField(out, "kernel", kernel.kernel);
    out.attributeArray("variants", [&] {
      for (const std::string &variant : kernel.variants)
        out.value(json::fixUTF8(variant));
    });
  });
}

static void write(json::OStream &out, const ProgramLine &line) {
  out.attribute("kind", "program");
  out.attribute("program", line.program);
  writeTextField(out, "hash", line.hash);
  writeTextField(out, "options", line.options);
  out.attributeArray("kernels", [&] {
    for (const KernelVariants &kernel : line.kernels)
      write(out, kernel);
  });
  out.attributeArray("lookAlikes", [&] {
    for (const LookAlike &kernel : line.lookAlikes)
      out.object([&] {
        writeTextField(out, "name", kernel.name);
        writeTextField(out, "reason", kernel.reason);
      });
  });
  out.attribute("spills", line.spills);
  if (!line.whyNotGenerated.empty())
    writeTextField(out, "notGenerated", line.whyNotGenerated);
}

static void write(json::OStream &out, const ConfigurationLine &line) {
  out.attribute("kind", "configuration");
  out.attribute("configuration", line.configuration);
  out.attribute("program", line.program);
  out.attribute("device", line.device);
  writeTextField(out, "kernel", line.kernel);
  writeSizes(out, line.sizes);
  out.attributeArray("variants", [&] {
    for (const VariantVerdict &verdict : line.variants)
      out.object([&] {
        writeTextField(out, "spec", verdict.spec);
        if (!verdict.refusal.empty())
          writeTextField(out, "refusal", verdict.refusal);
      });
  });
  if (!line.untunable.empty())
    writeTextField(out, "untunable", line.untunable);
}

static void write(json::OStream &out, const SampleLine &line) {
  out.attribute("kind", "sample");
  out.attribute("configuration", line.configuration);
  writeVersion(out, line.version);
  writeNumberField(out, "microseconds", line.microseconds);
  if (line.warmUp)
    out.attribute("warmUp", true);
  if (line.repeats)
    out.attribute("repeats", json::Value(*line.repeats));
}

static const char *textOf(CheckResult result) {
  switch (result) {
  case CheckResult::Equal:
    return "equal";
  case CheckResult::WithinBound:
    return "within bound";
  case CheckResult::Different:
    return "different";
  }
  return "";
}

static void write(json::OStream &out, const CheckLine &line) {
  out.attribute("kind", "check");
  out.attribute("configuration", line.configuration);
  writeVersion(out, line.version);
  out.attribute("result", textOf(line.result));
  if (line.result == CheckResult::Equal)
    return;
  out.attribute("argument", line.argument);
  out.attribute("element", json::Value(line.element));
  writeTextField(out, "expected", line.expected);
  writeTextField(out, "actual", line.actual);
}

static void write(json::OStream &out, const VersionFigures &figures) {
  out.object([&] {
    writeVersion(out, figures.version);
    writeNumberField(out, "median", figures.median);
    out.attribute("samples", json::Value(figures.samples));
    if (figures.interval)
      out.attributeArray("interval", [&] {
        writeNumber(out, figures.interval->low);
        writeNumber(out, figures.interval->high);
      });
    if (figures.dropped)
      out.attribute("dropped", true);
  });
}

static void write(json::OStream &out, const DecisionLine &line) {
  out.attribute("kind", "decision");
  out.attribute("configuration", line.configuration);
  writeTextField(out, "winner", versionInFile(line.winner));
  out.attributeArray("versions", [&] {
    for (const VersionFigures &figures : line.versions)
      write(out, figures);
  });
}

static void write(json::OStream &out, const EndLine &line) {
  out.attribute("kind", "end");
  out.attribute("launches", json::Value(line.launches));
  out.attribute("tunedLaunches", json::Value(line.tunedLaunches));
  out.attributeArray("byVersion", [&] {
    for (const VersionLaunches &part : line.byVersion)
      out.object([&] {
        out.attribute("configuration", part.configuration);
        writeVersion(out, part.version);
        out.attribute("launches", json::Value(part.launches));
      });
  });
  writeNumberField(out, "secondsAdded", line.secondsAdded);
}

std::string corvane::lineText(const RunLine &line) {
  std::string text;
  llvm::raw_string_ostream stream(text);
  json::OStream out(stream);
  out.object(
      [&] { std::visit([&](const auto &kind) { write(out, kind); }, line); });
  stream << '\n';
  stream.flush();
  return text;
}
