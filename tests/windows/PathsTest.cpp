// Tests of output directories with blanks and with letters outside ASCII.

#include "tests/support/ErrorCapture.h"
#include "tests/support/FakeRuntime.h"
#include "tests/support/LoadedAgent.h"
#include "tests/support/TempFolder.h"

#include "gtest/gtest.h"

#include <filesystem>
#include <string>

#include <windows.h>

using namespace corvane::test;

// The letters are in the character set of Western Europe and the Americas.
static const wchar_t *const folderName =
    L"r\u00e9sultats \u00e0 c\u00f4t\u00e9";

// The text in the character set of the system, which environment variables
// have; empty if the set lacks one of the letters.
static std::string narrow(const std::wstring &text) {
  std::string bytes(4 * text.size(), '\0');
  BOOL lacking = FALSE;
  const int length = WideCharToMultiByte(
      CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), static_cast<int>(text.size()),
      bytes.data(), static_cast<int>(bytes.size()), nullptr, &lacking);
  if (lacking)
    return "";
  bytes.resize(static_cast<std::size_t>(length));
  return bytes;
}

TEST(OutputDirectory, MayHaveBlanksAndLettersOutsideAscii) {
  ASSERT_NE(narrow(folderName), "");
  TempFolder folder;
  const std::string directory = folder.text() + "\\" + narrow(folderName);
  FakeRuntime runtime;
  {
    LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", directory},
                                {"CORVANE_INSTALL_LOCATION", "C:/tools"}});
  }
  // Looks for the directory by its wide name, as Windows has it.
  const std::filesystem::path made = folder.path() / folderName;
  for (const char *name :
       {".auto.csv", "autotune.csv", "main.html", "html/index.html"})
    EXPECT_NE(readBytes(made / name), "") << name;
}

TEST(OutputDirectory, ThatIsInvalidIsNamedInTheBytesOfTheVariable) {
  TempFolder folder;
  const std::string directory =
      folder.text() + "\\missing\\" + narrow(folderName);
  FakeRuntime runtime;
  ErrorCapture errors;
  LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", directory}});
  EXPECT_EQ(errors.text(),
            "CV: " + directory +
                " is invalid. There will be no autotune output generated.\n");
}

TEST(OutputDirectory, MayEndWithEitherSeparator) {
  for (const char *separator : {"/", "\\"}) {
    TempFolder folder;
    FakeRuntime runtime;
    LoadedAgent agent(runtime, {{"CORVANE_AUTOTUNE", folder.text() + separator},
                                {"CORVANE_INSTALL_LOCATION", "C:/tools"}});
    agent.unload();
    EXPECT_TRUE(folder.has("autotune.csv")) << separator;
    EXPECT_TRUE(folder.has("html/index.html")) << separator;
  }
}
