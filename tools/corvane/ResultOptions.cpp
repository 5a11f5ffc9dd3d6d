// The options of the commands that show results.

#include "tools/corvane/CommandLine.h"

#include "results/NumberText.h"

#include <memory>

using namespace corvane;

static void addReport(CLI::App &commands, Actions &actions) {
  const auto options = std::make_shared<ReportOptions>();
  CLI::App *const command = commands.add_subcommand(
      "report", "Write a page of what was found, for a browser");
  command
      ->add_option("DIR", options->folders,
                   "Tuned or autotuned folders, or single records and logs")
      ->type_name("")
      ->capture_default_str();
  command
      ->add_option("--output", options->output,
                   "The page (report.html in the first folder)")
      ->type_name("FILE");
  command
      ->add_option("--json", options->json,
                   "Everything in the page, for other programs; - is the "
                   "standard output")
      ->type_name("FILE");
  command
      ->add_option("--csv", options->csv,
                   "A row for each version, for a spreadsheet")
      ->type_name("FILE");
  command
      ->add_option("--t4", options->t4,
                   "The results by the auto-tuning schema T4 1.0.0")
      ->type_name("FILE");
  endUsageWith(*command, "[DIR...]");
  command->footer("Example: corvane report corvane-tuned --output solve.html\n"
                  "Without --output, the page is left out if another file is "
                  "asked for.");
  actions[command] = {Action::None,
                      [options](const auto &) { return report(*options); }};
}

static void addExplain(CLI::App &commands, Actions &actions) {
  const auto options = std::make_shared<ExplainOptions>();
  CLI::App *const command = commands.add_subcommand(
      "explain", "Say for each kernel which version runs, and why");
  command->add_option("DIR", options->folder, "Tuned or autotuned folder")
      ->type_name("")
      ->capture_default_str();
  command->add_option("KERNEL", options->kernel, "Only this kernel")
      ->type_name("");
  endUsageWith(*command, "[DIR [KERNEL]]");
  command->footer("Example: corvane explain corvane-tuned matmul");
  actions[command] = {Action::None,
                      [options](const auto &) { return explain(*options); }};
}

static void addMerge(CLI::App &commands, Actions &actions) {
  const auto options = std::make_shared<MergeOptions>();
  CLI::App *const command = commands.add_subcommand(
      "merge", "Put the results of several folders into a new one");
  command
      ->add_option("-o,--output", options->output,
                   "The new folder, with a profile and a report of all runs")
      ->type_name("DIR")
      ->required();
  command->add_option("FOLDER", options->folders, "Folders with results")
      ->type_name("")
      ->required();
  endUsageWith(*command, "FOLDER...");
  command->footer("Example: corvane merge -o all node1 node2 node3");
  actions[command] = {Action::None,
                      [options](const auto &) { return merge(*options); }};
}

// The part that a text such as "5%" means; none if it means nothing.
static std::optional<double> partOf(std::string text) {
  if (!text.empty() && text.back() == '%')
    text.pop_back();
  if (text.empty() ||
      text.find_first_not_of("0123456789.") != std::string::npos ||
      text.find_first_of("0123456789") == std::string::npos)
    return std::nullopt;
  return leadingNumber(text) / 100.0;
}

static std::string checkPercentage(const std::string &text) {
  return partOf(text) ? std::string() : "needs a percentage such as 5%";
}

static void addDiff(CLI::App &commands, Actions &actions) {
  const auto options = std::make_shared<DiffOptions>();
  CLI::App *const command =
      commands.add_subcommand("diff", "Compare what two folders have found");
  command->add_option("OLD", options->before, "Folder with results")
      ->type_name("")
      ->required();
  command->add_option("NEW", options->after, "Folder to compare with it")
      ->type_name("")
      ->required();
  command
      ->add_option_function<std::string>(
          "--fail-on-slower",
          [options](const std::string &text) {
            options->failOnSlower = partOf(text);
          },
          "End with exit code 1 if a configuration is slower by more than this")
      ->type_name("P%")
      ->check(checkPercentage);
  endUsageWith(*command, "OLD NEW");
  command->footer("Example: corvane diff before after --fail-on-slower 5%");
  actions[command] = {Action::None,
                      [options](const auto &) { return diff(*options); }};
}

void corvane::addResultCommands(CLI::App &commands, Actions &actions) {
  addReport(commands, actions);
  addExplain(commands, actions);
  addMerge(commands, actions);
  addDiff(commands, actions);
}
