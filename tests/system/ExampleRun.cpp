// Starts an example, and parses what it and the observer wrote.

#include "tests/system/ExampleRun.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

using namespace corvane;

std::string test::exampleProgram(const std::string &name) {
  return std::string(EXAMPLES_FOLDER) + "/" + name;
}

std::string test::layerLibrary() { return LAYER_FILE; }

std::string test::agentLibrary() { return AGENT_FILE; }

std::string test::layerBeside(const std::string &testAgent) {
  const std::filesystem::path layer = LAYER_FILE;
  return std::string(TEST_AGENTS_FOLDER) + "/" + testAgent + "/" +
         layer.filename().string();
}

std::ostream &test::operator<<(std::ostream &out, const Launches &launches) {
  return out << launches.count << " launches of " << launches.kernel << " over "
             << launches.globalSize << " / " << launches.localSize;
}

/// Reads "launch kernel=NAME global=SIZES local=SIZES". Any other line fails
/// the test.
static test::Launches readLaunch(const std::string &line) {
  std::istringstream in(line);
  std::string launch, kernel, global, local, rest;
  in >> launch >> kernel >> global >> local;
  const auto holds = [](const std::string &word, const char *key) {
    return word.rfind(key, 0) == 0;
  };
  if (launch == "launch" && holds(kernel, "kernel=") &&
      holds(global, "global=") && holds(local, "local=") && !(in >> rest))
    return {1, kernel.substr(7), global.substr(7), local.substr(6)};
  ADD_FAILURE() << "the observer wrote: " << line;
  return {1, line, "", ""};
}

static std::vector<test::Launches> readLaunches(const std::string &text) {
  std::vector<test::Launches> all;
  for (const std::string &line : test::linesOf(text)) {
    const test::Launches one = readLaunch(line);
    if (!all.empty() && all.back().sameAs(one))
      ++all.back().count;
    else
      all.push_back(one);
  }
  return all;
}

test::ExampleRun test::runExample(const std::vector<std::string> &command,
                                  const std::string &layers,
                                  const Environment &changes) {
  const TempFolder folder;
  std::vector<std::string> words = command;
  words[0] = exampleProgram(command[0]);
  Environment all = changes;
  // The layer that is named last is the first one that calls pass.
  all["OPENCL_LAYERS"] =
      std::string(OBSERVER_FILE) + (layers.empty() ? "" : ":" + layers);
  all["LAUNCH_OBSERVER_FILE"] = folder.file("launches");

  ExampleRun run;
  run.program = runProgram(words, all);
  run.launches = readLaunches(folder.read("launches"));
  for (const std::string &line : linesOf(run.program.out))
    if (line.rfind("result ", 0) == 0)
      run.results.push_back(line);
  return run;
}

void test::expectAllRight(const ExampleRun &run, size_t results) {
  EXPECT_EQ(run.program.exitCode, 0) << run.program.out << run.program.err;
  EXPECT_EQ(run.results.size(), results) << run.program.out << run.program.err;
  for (const std::string &line : run.results)
    EXPECT_NE(line.find(" wrong=0 "), std::string::npos) << line;
}
