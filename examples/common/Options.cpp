// Parses the command line, and prints the help text.

#include "examples/common/Options.h"
#include "examples/common/Failure.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace examples;

void Options::add(const char *name, size_t &value, const char *help) {
  options.push_back({name, help, &value, nullptr});
}

void Options::add(const char *name, std::string &value, const char *help) {
  options.push_back({name, help, nullptr, &value});
}

void Options::printHelp(const char *program) const {
  std::printf("%s\n\nUsage: %s [--option value ...]\n", summary.c_str(),
              program);
  for (const Option &option : options) {
    const std::string preset =
        option.text ? *option.text : std::to_string(*option.number);
    std::printf("  %-14s %s (default: %s)\n", option.name.c_str(),
                option.help.c_str(), preset.empty() ? "none" : preset.c_str());
  }
  std::printf("  %-14s %s\n", "--help", "this text");
}

/// Ends the program unless all of \p text is a number of at least 1.
static size_t positiveNumber(const std::string &name, const char *text) {
  size_t number = 0;
  const char *end = text + std::strlen(text);
  const auto [stop, error] = std::from_chars(text, end, number);
  if (error != std::errc() || stop != end || number == 0)
    fail(name + " needs a whole number of at least 1, not '" + text + "'");
  return number;
}

void Options::assign(const std::string &name, const char *value) const {
  for (const Option &option : options) {
    if (option.name != name)
      continue;
    if (!value)
      fail(name + " needs a value; see --help");
    if (option.text)
      *option.text = value;
    else
      *option.number = positiveNumber(name, value);
    return;
  }
  fail("there is no option '" + name + "'; see --help");
}

void Options::parse(int argumentCount, char **arguments) const {
  for (int i = 1; i < argumentCount; i += 2) {
    const std::string name = arguments[i];
    if (name == "--help") {
      printHelp(arguments[0]);
      std::exit(EXIT_SUCCESS);
    }
    assign(name, i + 1 < argumentCount ? arguments[i + 1] : nullptr);
  }
}
