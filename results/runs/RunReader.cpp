// Parses each line of a record and adds it to the run, by its kind.

#include "results/runs/RunReader.h"

#include "results/runs/LineFields.h"

#include <type_traits>

using namespace corvane;
using llvm::StringRef;

// The same number twice is a mistake, and the first line counts.
template <typename Map, typename Value>
static void insertOnce(Map &map, std::uint32_t number, Value value,
                       JsonFields &fields) {
  if (!map.try_emplace(number, std::move(value)).second)
    fields.complain("number " + std::to_string(number) + " occurs twice");
}

static RunConfiguration *findConfiguration(RunRecord &run, std::uint32_t number,
                                           JsonFields &fields) {
  const auto found = run.configurations.find(number);
  if (found != run.configurations.end())
    return &found->second;
  fields.complain("there is no configuration " + std::to_string(number));
  return nullptr;
}

static void addConfiguration(RunRecord &run, JsonFields &fields) {
  ConfigurationLine line = readConfiguration(fields);
  if (!run.programs.count(line.program))
    fields.complain("there is no program " + std::to_string(line.program));
  if (!run.devices.count(line.device))
    fields.complain("there is no device " + std::to_string(line.device));
  if (!fields.problem().empty())
    return;
  const std::uint32_t number = line.configuration;
  insertOnce(run.configurations, number,
             RunConfiguration{std::move(line), {}, {}, std::nullopt}, fields);
}

// A decision may come again when tuning goes on; the last one counts.
template <typename Line>
static void addToConfiguration(RunRecord &run, Line line, JsonFields &fields) {
  RunConfiguration *const owner =
      findConfiguration(run, line.configuration, fields);
  if (!fields.problem().empty())
    return;
  if constexpr (std::is_same_v<Line, SampleLine>)
    owner->samples.push_back(std::move(line));
  else if constexpr (std::is_same_v<Line, CheckLine>)
    owner->checks.push_back(std::move(line));
  else
    owner->decision = std::move(line);
}

static void addProcess(RunRecord &run, JsonFields &fields) {
  if (run.process) {
    fields.complain("a second process line");
    return;
  }
  ProcessLine line = readProcess(fields);
  if (fields.problem().empty())
    run.process = std::move(line);
}

static void addDevice(RunRecord &run, JsonFields &fields) {
  DeviceLine line = readDevice(fields);
  if (fields.problem().empty())
    insertOnce(run.devices, line.device, line, fields);
}

static void addProgram(RunRecord &run, JsonFields &fields) {
  ProgramLine line = readProgram(fields);
  if (fields.problem().empty())
    insertOnce(run.programs, line.program, line, fields);
}

static void addEnd(RunRecord &run, JsonFields &fields) {
  EndLine line = readEnd(fields);
  if (fields.problem().empty())
    run.end = std::move(line);
}

static void addKind(RunRecord &run, StringRef kind, JsonFields &fields) {
  if (kind == "process")
    addProcess(run, fields);
  else if (kind == "device")
    addDevice(run, fields);
  else if (kind == "program")
    addProgram(run, fields);
  else if (kind == "configuration")
    addConfiguration(run, fields);
  else if (kind == "sample")
    addToConfiguration(run, readSample(fields), fields);
  else if (kind == "check")
    addToConfiguration(run, readCheck(fields), fields);
  else if (kind == "decision")
    addToConfiguration(run, readDecision(fields), fields);
  else if (kind == "end")
    addEnd(run, fields);
}

void RunReader::complain(std::string what) {
  if (run.problems.size() < maxProblems)
    run.problems.push_back({lineNumber, std::move(what)});
  ++run.problemCount;
}

void RunReader::forgiveLastLine() {
  // What was not kept cannot be told apart any more, but is not shown either.
  if (!run.problems.empty() && run.problems.back().line == lineNumber) {
    run.problems.pop_back();
    --run.problemCount;
  }
}

void RunReader::addLine(StringRef line) {
  ++lineNumber;
  if (refused || line.trim().empty())
    return;
  if (line.size() > maxLineLength) {
    complain("the line is too long");
    return;
  }

  llvm::Expected<JsonValue> value = parseJson(line);
  if (!value) {
    complain(llvm::toString(value.takeError()));
    return;
  }
  JsonFields fields(value->asObject());
  const std::string kind = fields.text("kind");
  if (!run.process && kind != "process") {
    refused = true;
    complain("this is no run record: it does not begin with a process line");
    return;
  }
  addKind(run, kind, fields);
  if (!fields.problem().empty())
    complain(fields.problem());
  refused = !run.process;
}

RunRecord RunReader::take() {
  RunRecord taken = std::move(run);
  *this = RunReader();
  return taken;
}

RunRecord corvane::readRun(StringRef text) {
  RunReader reader;
  while (!text.empty()) {
    const std::size_t length = text.find('\n');
    reader.addLine(text.substr(0, length));
    if (length == StringRef::npos) {
      reader.forgiveLastLine();
      break;
    }
    text = text.drop_front(length + 1);
  }
  return reader.take();
}
