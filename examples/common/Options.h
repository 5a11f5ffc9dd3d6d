// Command line options of the form "--name value", and a help text for them.

#pragma once

#include <string>
#include <utility>
#include <vector>

namespace examples {

/// Describes the options of one program and reads the command line.
class Options {
public:
  /// \p firstLine begins the help text.
  explicit Options(std::string firstLine) : summary(std::move(firstLine)) {}

  /// Adds an option whose value is a number of at least 1. \p value holds the
  /// default and receives what the user says; it must outlive `parse`.
  void add(const char *name, size_t &value, const char *help);

  /// Adds an option whose value is any text.
  void add(const char *name, std::string &value, const char *help);

  /// Reads the command line. Prints the help text and ends the program when
  /// that is asked for; ends it with a message when an option makes no sense.
  void parse(int argumentCount, char **arguments) const;

private:
  struct Option {
    std::string name;
    std::string help;
    size_t *number;    ///< null for a text
    std::string *text; ///< null for a number
  };

  void printHelp(const char *program) const;
  void assign(const std::string &name, const char *value) const;

  std::string summary;
  std::vector<Option> options;
};

} // namespace examples
