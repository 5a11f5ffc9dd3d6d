// corvane coarsen: becomes corvane-coarsen, which holds the compiler.

#include "tools/corvane/Command.h"
#include "tools/corvane/Layer.h"
#include "tools/corvane/Process.h"

using namespace corvane;

static void addOption(Program &words, const char *name,
                      const std::string &value) {
  if (!value.empty())
    words.insert(words.end(), {name, value});
}

int corvane::coarsen(const CoarsenOptions &options) {
  const std::optional<std::string> tool = findGenerator();
  if (!tool) {
    say("corvane-coarsen is not there: build it with Clang's "
        "libraries (on Debian: apt-get install libclang-14-dev)");
    return CommandFailed;
  }

  Program words{*tool, options.file};
  addOption(words, "--plans", options.plans);
  addOption(words, "--output", options.output);
  addOption(words, "--refusals", options.refusals);
  words.emplace_back("--");
  words.insert(words.end(), options.build.begin(), options.build.end());
  const ProgramEnd end = become(words);
  if (!end.started)
    say(*tool + ": " + end.whyNot);
  return end.exitCode;
}
