// Tests that the README's table of environment variables is the one in the
// code.

#include "base/Settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

using namespace corvane;
using testing::ElementsAreArray;

// The rows of the first table whose lines begin with the name of a variable.
static std::vector<std::string> rowsOfReadme() {
  std::vector<std::string> rows;
  std::ifstream readme(README_FILE);
  bool isInSection = false;
  for (std::string line; std::getline(readme, line);) {
    if (line.rfind("## ", 0) == 0)
      isInSection = line == "## Environment variables";
    if (isInSection && line.rfind("| `", 0) == 0)
      rows.push_back(line);
  }
  return rows;
}

static std::vector<std::string> rowsOfSettings() {
  std::vector<std::string> rows;
  for (const Setting &setting : settings)
    rows.push_back(std::string("| `") + setting.name + "` | " +
                   setting.meaning + " | " + setting.withoutIt + " | " +
                   setting.lookedUp + " |");
  return rows;
}

TEST(Settings, AreTheTableInTheReadme) {
  EXPECT_THAT(rowsOfReadme(), ElementsAreArray(rowsOfSettings()));
}
