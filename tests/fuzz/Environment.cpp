// Fuzzes the values of the environment variables, before the load and while an
// application runs.
//
// An input is pieces of text, each ended by a zero byte. The first letter of a
// piece says what becomes of its variable; the others are the value.

#include "tests/fuzz/DeepFolder.h"
#include "tests/fuzz/EnvironmentStory.h"
#include "tests/fuzz/ErrorText.h"
#include "tests/fuzz/Input.h"
#include "tests/support/TempFolder.h"

#include "agent/Environment.h"

#include <cstdlib>
#include <iterator>
#include <optional>
#include <string>

using namespace corvane;
using namespace corvane::fuzz;
using namespace corvane::test;

using Value = std::optional<std::string>;

static constexpr const char *names[] = {
    variable::autotune,
    variable::installLocation,
    variable::flushOnReleaseContext,
    variable::autotuneShadow,
    variable::dumpLog,
    variable::corvane,
    variable::bypassVectorizationSafetyCheck,
    variable::tune,
    variable::profile,
    variable::samples,
    variable::verify,
    variable::tuneSeconds,
    variable::summary};

static bool isDirectory(const char *name) {
  return name == variable::autotune || name == variable::autotuneShadow ||
         name == variable::tune || name == variable::profile;
}

// "-": undefined; "+": too long for any path; anything else: the text itself.
static Value readValue(const char *name, Input &input,
                       const DeepFolder &folder) {
  const std::string_view piece = input.textUntil('\0');
  if (piece.empty() || piece.front() == '-')
    return std::nullopt;
  std::string value(piece.substr(1));
  if (isDirectory(name))
    value = folder.contained(value);
  if (piece.front() == '+')
    value += std::string(5000, 'x');
  return value;
}

static void define(const char *name, const Value &value) {
  if (value)
    setenv(name, value->c_str(), 1);
  else
    unsetenv(name);
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static const DeepFolder folder;
  static const TempFolder errorFolder;
  static ErrorText errors(errorFolder.file("stderr.txt"));
  folder.empty();
  errors.take();

  Input input(data, size);
  const bool spills = input.flag();
  Story story;
  for (const char *name : names)
    define(name, readValue(name, input, folder));
  story.load(errors);
  story.build(spills);
  story.launch();
  while (!input.empty()) {
    const char *name = names[input.below(std::size(names))];
    define(name, readValue(name, input, folder));
    story.launch();
    story.flushAtContext(errors);
    story.launch();
  }
  story.unload(errors);
  return 0;
}
