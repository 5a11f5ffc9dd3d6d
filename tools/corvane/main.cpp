// Reads the command line, shows help, and calls a command.

#include "tools/corvane/CommandLine.h"
#include "tools/corvane/OpenClProbe.h"
#include "tools/corvane/Process.h"

#include "tuning/Tolerance.h"

#include "llvm/ADT/StringRef.h"
#include "llvm/Support/raw_ostream.h"

#include <algorithm>
#include <charconv>
#include <memory>

using namespace corvane;

namespace {

/// Help for a command whose arguments end with words that are not its own.
class CommandFormatter : public CLI::Formatter {
public:
  explicit CommandFormatter(std::string words) : ending(std::move(words)) {}
  std::string make_usage(const CLI::App *, std::string name) const override {
    return "Usage: " + name + " [OPTIONS] " + ending + "\n";
  }

private:
  const std::string ending;
};

const char programWords[] = "-- PROGRAM ARGUMENTS...";

} // namespace

void corvane::endUsageWith(CLI::App &command, std::string words) {
  command.formatter(std::make_shared<CommandFormatter>(std::move(words)));
}

static std::string checkTolerance(const std::string &text) {
  return parseTolerance(text)
             ? std::string()
             : "needs exact, off or a number between 0 and 1 such as 1e-5";
}

// As the library reads the variable.
static std::string checkSamples(const std::string &text) {
  unsigned samples = 0;
  const bool isRead = !llvm::StringRef(text).getAsInteger(10, samples);
  return isRead && samples >= 5 && samples <= 1000
             ? std::string()
             : "needs a number from 5 to 1000";
}

static std::string checkSeconds(const std::string &text) {
  double seconds = 0.0;
  const char *const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, seconds);
  return error == std::errc() && end == last && seconds > 0.0
             ? std::string()
             : "needs a number above 0";
}

static std::string checkFolder(const std::string &text) {
  return text.empty() ? "needs the name of a folder" : std::string();
}

static void addTune(CLI::App &commands, Actions &actions) {
  const auto options = std::make_shared<TuneOptions>();
  CLI::App *const command = commands.add_subcommand(
      "tune", "Run a program and find the fastest versions of its kernels");
  command
      ->add_option("--output", options->folder,
                   "Folder for runs and profile, earlier ones included")
      ->type_name("DIR")
      ->check(checkFolder)
      ->capture_default_str();
  command
      ->add_option("--samples", options->samples,
                   "Samples of each version for a decision (7); 5 are enough "
                   "for at most 3 variants")
      ->type_name("N")
      ->check(checkSamples);
  command
      ->add_option("--verify", options->verify,
                   "How far a version's results may be from the original's: "
                   "exact (the default), a part such as 1e-5, or off")
      ->type_name("V")
      ->check(checkTolerance);
  command
      ->add_option("--seconds", options->seconds,
                   "Time that tuning may add, in all")
      ->type_name("S")
      ->check(checkSeconds);
  command->add_flag("!--no-generate", options->generates,
                    "Measure only the variants that programs carry");
  command->add_flag("--quiet", options->quiet,
                    "No progress on the terminal while the program runs");
  endUsageWith(*command, programWords);
  command->footer("Example: corvane tune --seconds 60 -- ./solve --size 512\n"
                  "Ends with the program's exit code.");
  actions[command] = {Action::Program, [options](const auto &program) {
                        return tune(*options, program);
                      }};
}

static void addRun(CLI::App &commands, Actions &actions) {
  const auto options = std::make_shared<RunOptions>();
  CLI::App *const command = commands.add_subcommand(
      "run", "Run a program with the versions that tuning has found");
  command
      ->add_option("--profile", options->folder,
                   "Tuned folder, or a profile in it")
      ->type_name("DIR")
      ->capture_default_str();
  command->add_flag("--summary", options->summary,
                    "One line at the end: how many launches ran a variant");
  endUsageWith(*command, programWords);
  command->footer("Example: corvane run -- ./solve --size 512");
  actions[command] = {Action::Program, [options](const auto &program) {
                        return run(*options, program);
                      }};
}

static void addCoarsen(CLI::App &commands, Actions &actions) {
  const auto options = std::make_shared<CoarsenOptions>();
  CLI::App *const command = commands.add_subcommand(
      "coarsen", "Print an OpenCL source with variants of its kernels");
  command
      ->add_option("FILE", options->file,
                   "OpenCL C source; - is the standard input")
      ->type_name("")
      ->required();
  command
      ->add_option("--plans", options->plans,
                   "Which variants: default, all, or a list with commas such "
                   "as g0S4,l0S2,block:g0S2 (docs/coarsening.md)")
      ->type_name("P");
  command
      ->add_option("--output", options->output,
                   "File to write to, in place of the standard output")
      ->type_name("F");
  command
      ->add_option("--refusals", options->refusals,
                   "JSON file that tells what was made, what was not, and why")
      ->type_name("F.json");
  endUsageWith(*command, "FILE.cl [-- OPTIONS FOR ITS BUILD...]");
  command->footer("Example: corvane coarsen blur.cl --output blur-variants.cl "
                  "-- -D RADIUS=3");
  actions[command] = {Action::Optional, [options](const auto &build) {
                        options->build = build;
                        return coarsen(*options);
                      }};
}

// What CLI11 found wrong, or the help that was asked for.
static int tellOf(const CLI::App &commands, const CLI::ParseError &error) {
  if (error.get_exit_code() == 0)
    return commands.exit(error);
  const bool isExtra =
      error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
  say(std::string(error.what()) +
      (isExtra ? "; a program and its arguments come after --" : ""));
  return CommandFailed;
}

// Calls the command that was named.
static int perform(const CLI::App &commands, const Actions &actions,
                   const WordsAfter &words) {
  const CLI::App *const named = commands.get_subcommands().front();
  const Action &action = actions.at(named);
  if (action.words == Action::Program && words.empty()) {
    say("which program? Put it after --, as in: corvane " + named->get_name() +
        " -- ./program");
    return CommandFailed;
  }
  if (action.words == Action::None && !words.empty()) {
    say("nothing may follow -- with corvane " + named->get_name());
    return CommandFailed;
  }
  return action.run(words);
}

static int dispatch(const std::vector<std::string> &arguments) {
  CLI::App commands("Finds the fastest versions of a program's OpenCL kernels "
                    "and uses them.",
                    "corvane");
  commands.set_version_flag("--version", "corvane " CORVANE_VERSION);
  commands.require_subcommand(1);
  commands.footer("corvane COMMAND --help tells more of a command.");
  Actions actions;
  addTune(commands, actions);
  addRun(commands, actions);
  addResultCommands(commands, actions);
  addDiagnosisCommands(commands, actions);
  addCoarsen(commands, actions);

  // What follows the first "--" is for the program or for its build, whatever
  // it looks like.
  const auto separator =
      std::find(arguments.begin(), arguments.end(), std::string("--"));
  const WordsAfter others(separator == arguments.end() ? separator
                                                       : separator + 1,
                          arguments.end());
  std::vector<std::string> ours(arguments.begin(), separator);
  std::reverse(ours.begin(), ours.end()); // as CLI11 takes them
  try {
    commands.parse(ours);
  } catch (const CLI::ParseError &error) {
    return tellOf(commands, error);
  }
  return perform(commands, actions, others);
}

int main(int count, char **values) {
  const std::vector<std::string> arguments = argumentsOf(count, values);
  if (arguments.size() == 2 && arguments[0] == probeArgument)
    return static_cast<int>(askLoader(arguments[1]));
  if (arguments.size() == 5 && arguments[0] == describeArgument)
    return describeOpenCl(
        {arguments[1], arguments[2], arguments[3], arguments[4]});
  const int code = dispatch(arguments);
  // LLVM ends the process with an error of its own if a line was lost.
  llvm::errs().flush();
  llvm::errs().clear_error();
  return code;
}
