// Tests that our files do not depend on the locale that the application sets.

#include "TestState.h"
#include "session/Flush.h"
#include "session/LogAppender.h"
#include "tests/support/EnvGuard.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <clocale>
#include <locale>

using namespace corvane;
using namespace corvane::test;
using testing::HasSubstr;

namespace {

struct GermanNumbers : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

/// The C++ library's global locale with a decimal comma.
class CommaInStreams {
public:
  CommaInStreams()
      : before(std::locale::global(
            std::locale(std::locale::classic(), new GermanNumbers))) {}
  ~CommaInStreams() { std::locale::global(before); }
  CommaInStreams(const CommaInStreams &) = delete;
  CommaInStreams &operator=(const CommaInStreams &) = delete;

private:
  std::locale before;
};

/// The C library's locale with a decimal comma, where one is installed.
class CommaInC {
public:
  CommaInC() : before(std::setlocale(LC_ALL, nullptr)) {
    for (const char *name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German",
                             "fr_FR.UTF-8", "French"})
      if (std::setlocale(LC_ALL, name) &&
          *std::localeconv()->decimal_point == ',')
        return;
    std::setlocale(LC_ALL, before.c_str());
  }
  ~CommaInC() { std::setlocale(LC_ALL, before.c_str()); }
  CommaInC(const CommaInC &) = delete;
  CommaInC &operator=(const CommaInC &) = delete;

  static bool works() { return *std::localeconv()->decimal_point == ','; }

private:
  std::string before;
};

struct Locale : testing::Test {
  TempFolder folder;
  EnvGuard directory{"CORVANE_AUTOTUNE", folder.text()};
  EnvGuard location{"CORVANE_INSTALL_LOCATION", "/opt/x"};
  TestState state;

  /// Runs a kernel, flushes, and checks all files with numbers in them.
  void expectPointsAndNoGroups() {
    LaunchRecord &launch =
        state.addLaunch("k", 1, {1048576, 0, 0}, {1024, 0, 0});
    for (int i = 0; i != 1100; ++i)
      state.complete(launch, "", 1234567);
    EXPECT_THAT(folder.read(".auto.csv"),
                HasSubstr("\nk,1048576,,,1024,,,baseline,1234.567\n"));
    flushAutotuneResults();
    EXPECT_THAT(folder.read("autotune.csv"),
                HasSubstr("\nk,1048576,,,1024,,,baseline,1234.57, \n"));
    const std::string base = "html/k_1048576___1024__";
    EXPECT_THAT(folder.read(base + "_table.html"),
                AllOf(HasSubstr("called 1100 times"),
                      HasSubstr("(line 1-1100)"),
                      HasSubstr("<td> 1234.567 </td><td> 1.0x </td>")));
    EXPECT_THAT(folder.read(base + "_graph.html"),
                HasSubstr("\n+ \"1100,1234.57\\n\"\n"));
  }
};

} // namespace

TEST_F(Locale, OfTheStreamsLeavesNumbersAlone) {
  const CommaInStreams comma;
  std::ostringstream proof;
  proof << 1234.5;
  ASSERT_EQ(proof.str(), "1.234,5");
  expectPointsAndNoGroups();
}

TEST_F(Locale, OfTheCLibraryLeavesNumbersAlone) {
  const CommaInC comma;
  if (!CommaInC::works())
    GTEST_SKIP() << "no locale with a decimal comma is installed";
  expectPointsAndNoGroups();
}
