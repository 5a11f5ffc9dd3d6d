// The arguments of the commands.

#include "tools/corvane/Command.h"
#include "tools/corvane/Process.h"

#include "tuning/Tolerance.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

using namespace corvane;

namespace {

/// Help for a command that runs a program.
class CommandFormatter : public CLI::Formatter {
public:
  std::string make_usage(const CLI::App *, std::string name) const override {
    return "Usage: " + name + " [OPTIONS] -- PROGRAM ARGUMENTS...\n";
  }
};

} // namespace

static std::string checkTolerance(const std::string &text) {
  return parseTolerance(text)
             ? std::string()
             : "needs exact, off or a number between 0 and 1 such as 1e-5";
}

static CLI::App *addTune(CLI::App &commands, TuneOptions &options) {
  CLI::App *const command = commands.add_subcommand(
      "tune", "Run a program and find the fastest versions of its kernels");
  command
      ->add_option("--output", options.folder,
                   "Folder for runs and profile, earlier ones included")
      ->type_name("DIR")
      ->capture_default_str();
  command
      ->add_option("--samples", options.samples,
                   "Timed runs of each version for a decision (7)")
      ->type_name("N")
      ->check(CLI::Range(1, 1000000));
  command
      ->add_option("--verify", options.verify,
                   "How far a version's results may be from the original's: "
                   "exact (the default), a part such as 1e-5, or off")
      ->type_name("V")
      ->check(checkTolerance);
  command
      ->add_option("--seconds", options.seconds,
                   "Time that tuning may add, in all")
      ->type_name("S")
      ->check(CLI::PositiveNumber);
  command->formatter(std::make_shared<CommandFormatter>());
  command->footer("Example: corvane tune --seconds 60 -- ./solve --size 512\n"
                  "Ends with the program's exit code.");
  return command;
}

static CLI::App *addRun(CLI::App &commands, RunOptions &options) {
  CLI::App *const command = commands.add_subcommand(
      "run", "Run a program with the versions that tuning has found");
  command
      ->add_option("--profile", options.folder,
                   "Tuned folder, or a profile in it")
      ->type_name("DIR")
      ->capture_default_str();
  command->add_flag("--summary", options.summary,
                    "One line at the end: how many launches ran a variant");
  command->formatter(std::make_shared<CommandFormatter>());
  command->footer("Example: corvane run -- ./solve --size 512");
  return command;
}

// What CLI11 found wrong, or the help that was asked for.
static int explain(const CLI::App &commands, const CLI::ParseError &error) {
  if (error.get_exit_code() == 0)
    return commands.exit(error);
  say(error.what());
  return CommandFailed;
}

static int dispatch(const std::vector<std::string> &arguments) {
  CLI::App commands("Finds the fastest versions of a program's OpenCL kernels "
                    "and uses them.",
                    "corvane");
  TuneOptions tuneOptions;
  RunOptions runOptions;
  commands.set_version_flag("--version", "corvane " CORVANE_VERSION);
  commands.require_subcommand(1);
  commands.footer("corvane COMMAND --help tells more of a command.");
  CLI::App *const tuneCommand = addTune(commands, tuneOptions);
  CLI::App *const runCommand = addRun(commands, runOptions);

  // What follows the first "--" is the program's, whatever it looks like.
  const auto separator =
      std::find(arguments.begin(), arguments.end(), std::string("--"));
  const Program program(separator == arguments.end() ? separator
                                                     : separator + 1,
                        arguments.end());
  std::vector<std::string> ours(arguments.begin(), separator);
  std::reverse(ours.begin(), ours.end()); // as CLI11 takes them
  try {
    commands.parse(ours);
  } catch (const CLI::ParseError &error) {
    return explain(commands, error);
  }
  if (program.empty()) {
    say("which program? Put it after --, as in: corvane " +
        commands.get_subcommands().front()->get_name() + " -- ./program");
    return CommandFailed;
  }
  if (tuneCommand->parsed())
    return tune(tuneOptions, program);
  return runCommand->parsed() ? run(runOptions, program) : CommandFailed;
}

int main(int count, char **values) {
  const std::vector<std::string> arguments = argumentsOf(count, values);
  if (arguments.size() == 2 && arguments[0] == probeArgument)
    return static_cast<int>(askLoader(arguments[1]));
  return dispatch(arguments);
}
