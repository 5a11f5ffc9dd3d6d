// The options of the commands that look for mistakes.

#include "tools/corvane/CommandLine.h"

#include <memory>

using namespace corvane;

static void addDoctor(CLI::App &commands, Actions &actions) {
  const auto options = std::make_shared<DoctorOptions>();
  CLI::App *const command = commands.add_subcommand(
      "doctor", "Examine what tuning needs, and a program if one is given");
  command
      ->add_option("--output", options->folder,
                   "The folder that results are to be written to")
      ->type_name("DIR")
      ->capture_default_str();
  endUsageWith(*command, "[-- PROGRAM ARGUMENTS...]");
  command->footer("Example: corvane doctor -- ./solve --size 512\n"
                  "Ends with exit code 1 if something fails.");
  actions[command] = {Action::Optional, [options](const auto &program) {
                        return doctor(*options, program);
                      }};
}

static void addCheck(CLI::App &commands, Actions &actions) {
  CLI::App *const command = commands.add_subcommand(
      "check", "Run each variant in a simulator that watches memory");
  endUsageWith(*command, "-- PROGRAM ARGUMENTS...");
  command->footer(
      "Example: corvane check -- ./solve --size 64\n"
      "Runs the program twice: in the simulator Oclgrind, which is very slow,\n"
      "for accesses out of bounds, races and values that were never set; and\n"
      "on the real device, to compare results.\n"
      "Ends with exit code 1 if a variant does what its kernel does not.");
  actions[command] = {Action::Program,
                      [](const auto &program) { return check(program); }};
}

void corvane::addDiagnosisCommands(CLI::App &commands, Actions &actions) {
  addDoctor(commands, actions);
  addCheck(commands, actions);
}
