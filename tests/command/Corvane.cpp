// Runs commands through the shell of the system, and makes records of runs.

#include "tests/command/Corvane.h"

#include "results/runs/RunWriter.h"

#include <cstdlib>

#ifndef _WIN32
#include <sys/wait.h>
#endif

using namespace corvane;
using namespace corvane::test;

CorvaneTest::CorvaneTest() {
  for (const char *name :
       {"CORVANE_AUTOTUNE", "CORVANE_TUNE", "CORVANE_PROFILE",
        "CORVANE_SAMPLES", "CORVANE_VERIFY", "CORVANE_TUNE_SECONDS",
        "CORVANE_SUMMARY", "CORVANE_GENERATE", "CORVANE_VARIANTS",
        "OPENCL_LAYERS", "PYOPENCL_NO_CACHE"})
    variables.emplace_back(name, nullptr);
}

// The exit code in what std::system returns.
static int exitCodeOf(int status) {
#ifdef _WIN32
  return status;
#else
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

// Text streams of Windows end lines with a carriage return and a line feed.
static std::string withoutReturns(std::string text) {
#ifdef _WIN32
  for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos;)
    text.erase(at, 1);
#endif
  return text;
}

CorvaneTest::Outcome
CorvaneTest::runProgram(const std::vector<std::string> &command) const {
  std::string line;
  for (const std::string &word : command)
    line += "\"" + word + "\" ";
  line += ">\"" + folder.file("out") + "\" 2>\"" + folder.file("err") + "\"";
#ifdef _WIN32
  line = "\"" + line + "\""; // the shell takes the outermost pair away
#else
  line = "exec " + line;
#endif
  Outcome outcome;
  outcome.exitCode = exitCodeOf(std::system(line.c_str()));
  outcome.out = withoutReturns(folder.read("out"));
  outcome.err = withoutReturns(folder.read("err"));
  return outcome;
}

CorvaneTest::Outcome
CorvaneTest::corvane(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), CORVANE_FILE);
  return runProgram(arguments);
}

CorvaneTest::Outcome
CorvaneTest::tuned(const std::vector<std::string> &arguments) const {
  std::vector<std::string> all = {
      "tune", "--output", output(), "--no-generate", "--", APPLICATION_FILE};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return corvane(all);
}

std::string CorvaneTest::recordFile(const std::string &name,
                                    const std::vector<RunLine> &lines) const {
  std::string text;
  for (const RunLine &line : lines)
    text += lineText(line);
  EXPECT_TRUE(folder.write(name, text));
  return folder.file(name);
}

std::string CorvaneTest::tunedFolder(const std::string &name,
                                     const std::vector<RunLine> &lines) const {
  std::filesystem::create_directories(folder.path() / name / "runs" / "a");
  recordFile(name + "/runs/a/run.jsonl", lines);
  return folder.file(name);
}

std::vector<RunLine> test::startOfRun(std::vector<KernelVariants> kernels) {
  DeviceLine device;
  device.name = "device";
  device.driver = "1";
  ProgramLine program;
  program.hash = "0123abcd";
  program.kernels = std::move(kernels);
  return {ProcessLine(), device, program};
}

void test::addConfiguration(std::vector<RunLine> &lines,
                            const std::string &kernel, double original,
                            double variant) {
  ConfigurationLine configuration;
  configuration.configuration = static_cast<std::uint32_t>(lines.size());
  configuration.kernel = kernel;
  configuration.sizes = {1, {1024, 0, 0}, {64, 0, 0}};
  configuration.variants = {{"g0S4", ""}};
  const std::uint32_t number = configuration.configuration;
  lines.emplace_back(configuration);
  for (int i = 0; i != 7; ++i) {
    lines.emplace_back(SampleLine{number, "", original, false});
    lines.emplace_back(SampleLine{number, "g0S4", variant, false});
  }
  CheckLine check;
  check.configuration = number;
  check.version = "g0S4";
  // After the first run and after the last.
  lines.emplace_back(check);
  lines.emplace_back(check);
}

EndLine test::endAfterLaunches(std::uint64_t launches) {
  EndLine line;
  line.launches = launches;
  line.byVersion = {{3, "", launches}};
  return line;
}

std::vector<RunLine> test::fasterVariant() {
  std::vector<RunLine> lines = startOfRun({{"scale", {"g0S4"}}});
  addConfiguration(lines, "scale", 100.0, 50.0);
  return lines;
}
