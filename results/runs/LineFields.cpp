// Reads the fields of each line in the order in which RunWriter.cpp writes
// them.

#include "results/runs/LineFields.h"

#include "results/RawTimingLog.h"
#include "results/runs/RunReader.h"
#include "results/runs/SizeFields.h"

#include <algorithm>
#include <limits>

using namespace corvane;

std::string corvane::versionFromFile(std::string name) {
  return name == baselineName ? std::string() : std::move(name);
}

// Reads each element of a list by \p readElement. What is wrong within an
// element is wrong with the line.
template <typename Element>
static std::vector<Element> readList(JsonFields &fields, llvm::StringRef key,
                                     Element (*readElement)(JsonFields &)) {
  std::vector<Element> elements;
  const llvm::ArrayRef<JsonValue> list = fields.list(key);
  elements.reserve(list.size());
  for (const JsonValue &value : list) {
    JsonFields inner(value.asObject());
    elements.push_back(readElement(inner));
    if (!inner.problem().empty())
      fields.complain("in \"" + key.str() + "\": " + inner.problem());
  }
  return elements;
}

static std::vector<std::string> readTexts(JsonFields &fields,
                                          llvm::StringRef key) {
  std::vector<std::string> texts;
  for (const JsonValue &value : fields.list(key))
    if (const std::string *const text = value.asText())
      texts.push_back(*text);
    else
      fields.complain("\"" + key.str() + "\" holds something that is no text");
  return texts;
}

static std::string optionalText(JsonFields &fields, llvm::StringRef key) {
  return fields.has(key) ? fields.text(key) : std::string();
}

static bool optionalFlag(JsonFields &fields, llvm::StringRef key) {
  return fields.has(key) && fields.flag(key);
}

static std::string readVersion(JsonFields &fields) {
  return versionFromFile(fields.text("version"));
}

ProcessLine corvane::readProcess(JsonFields &fields) {
  ProcessLine line;
  if (fields.text("format") != "corvane-run")
    fields.complain("\"format\" is not \"corvane-run\"");
  line.version = fields.whole32("version");
  if (line.version == 0 || line.version > runFormatVersion)
    fields.complain("format version " + std::to_string(line.version) +
                    " is not known here; this is version " +
                    std::to_string(runFormatVersion));
  line.library = fields.text("library");
  line.program = fields.text("program");
  line.host = fields.text("host");
  line.pid = fields.whole("pid");
  line.start = fields.text("start");
  if (fields.has("rank"))
    line.rank = fields.whole("rank");
  if (const JsonObject *const settings = fields.object("settings"))
    for (const auto &[name, value] : *settings)
      if (const std::string *const text = value.asText())
        line.settings.emplace_back(name, *text);
  std::sort(line.settings.begin(), line.settings.end());
  return line;
}

DeviceLine corvane::readDevice(JsonFields &fields) {
  DeviceLine line;
  line.device = fields.whole32("device");
  line.name = fields.text("name");
  line.vendor = fields.text("vendor");
  line.version = fields.text("version");
  line.driver = fields.text("driver");
  line.type = fields.text("type");
  line.units = fields.whole32("units");
  line.localMemory = fields.whole("localMemory");
  return line;
}

static KernelVariants readKernelVariants(JsonFields &fields) {
  KernelVariants kernel;
  kernel.kernel = fields.text("kernel");
  kernel.variants = readTexts(fields, "variants");
  return kernel;
}

static LookAlike readLookAlike(JsonFields &fields) {
  LookAlike kernel;
  kernel.name = fields.text("name");
  kernel.reason = fields.text("reason");
  return kernel;
}

ProgramLine corvane::readProgram(JsonFields &fields) {
  ProgramLine line;
  line.program = fields.whole32("program");
  line.hash = fields.text("hash");
  line.options = fields.text("options");
  line.kernels = readList(fields, "kernels", readKernelVariants);
  line.lookAlikes = readList(fields, "lookAlikes", readLookAlike);
  line.spills = fields.flag("spills");
  line.whyNotGenerated = optionalText(fields, "notGenerated");
  return line;
}

static VariantVerdict readVerdict(JsonFields &fields) {
  VariantVerdict verdict;
  verdict.spec = fields.text("spec");
  verdict.refusal = optionalText(fields, "refusal");
  return verdict;
}

ConfigurationLine corvane::readConfiguration(JsonFields &fields) {
  ConfigurationLine line;
  line.configuration = fields.whole32("configuration");
  line.program = fields.whole32("program");
  line.device = fields.whole32("device");
  line.kernel = fields.text("kernel");
  line.sizes = readSizes(fields);
  line.variants = readList(fields, "variants", readVerdict);
  line.untunable = optionalText(fields, "untunable");
  return line;
}

SampleLine corvane::readSample(JsonFields &fields) {
  SampleLine line;
  line.configuration = fields.whole32("configuration");
  line.version = readVersion(fields);
  line.microseconds = fields.amount("microseconds");
  line.warmUp = optionalFlag(fields, "warmUp");
  if (fields.has("repeats"))
    line.repeats = fields.whole("repeats");
  return line;
}

static CheckResult readResult(JsonFields &fields) {
  const std::string text = fields.text("result");
  if (text == "within bound")
    return CheckResult::WithinBound;
  if (text == "different")
    return CheckResult::Different;
  if (text != "equal")
    fields.complain("\"result\" is no result of a check");
  return CheckResult::Equal;
}

CheckLine corvane::readCheck(JsonFields &fields) {
  CheckLine line;
  line.configuration = fields.whole32("configuration");
  line.version = readVersion(fields);
  line.result = readResult(fields);
  if (line.result == CheckResult::Equal)
    return line;
  // A version that was seen different is out, even if nothing tells where.
  if (fields.has("argument"))
    line.argument = fields.whole32("argument");
  if (fields.has("element"))
    line.element = fields.whole("element");
  line.expected = optionalText(fields, "expected");
  line.actual = optionalText(fields, "actual");
  return line;
}

static std::optional<RatioInterval> readInterval(JsonFields &fields) {
  const llvm::ArrayRef<JsonValue> list = fields.list("interval");
  std::optional<double> low, high;
  if (list.size() == 2) {
    low = finiteAmount(list[0]);
    high = list[1].isNull() ? std::numeric_limits<double>::infinity()
                            : finiteAmount(list[1]);
  }
  if (low && high)
    return RatioInterval{*low, *high};
  fields.complain("\"interval\" is no pair of numbers");
  return std::nullopt;
}

static VersionFigures readFigures(JsonFields &fields) {
  VersionFigures figures;
  figures.version = readVersion(fields);
  figures.median = fields.amount("median");
  figures.samples = fields.whole("samples");
  if (fields.has("interval"))
    figures.interval = readInterval(fields);
  figures.dropped = optionalFlag(fields, "dropped");
  return figures;
}

DecisionLine corvane::readDecision(JsonFields &fields) {
  DecisionLine line;
  line.configuration = fields.whole32("configuration");
  line.winner = versionFromFile(fields.text("winner"));
  line.versions = readList(fields, "versions", readFigures);
  return line;
}

static VersionLaunches readVersionLaunches(JsonFields &fields) {
  VersionLaunches part;
  part.configuration = fields.whole32("configuration");
  part.version = readVersion(fields);
  part.launches = fields.whole("launches");
  return part;
}

EndLine corvane::readEnd(JsonFields &fields) {
  EndLine line;
  line.launches = fields.whole("launches");
  line.tunedLaunches = fields.whole("tunedLaunches");
  line.byVersion = readList(fields, "byVersion", readVersionLaunches);
  line.secondsAdded = fields.amount("secondsAdded");
  return line;
}
