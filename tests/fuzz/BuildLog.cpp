// Fuzzes the screening of build logs with any text.

#include "tests/fuzz/Input.h"
#include "variants/SpillScreen.h"
#include "variants/VariantName.h"

#include <string>
#include <vector>

using namespace corvane;
using namespace corvane::fuzz;

using Words = std::vector<std::string>;

static Words wordsOf(const std::string &log) {
  Words words(1);
  for (const char c : log) {
    if (c != ' ' && c != '\n')
      words.back() += c;
    else if (!words.back().empty())
      words.emplace_back();
  }
  if (words.back().empty())
    words.pop_back();
  return words;
}

// Decides the same from a list of all words.
static bool isFlagged(const Words &words) {
  bool flagged = false;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "Warning:") {
      i += 5;
    } else if (words[i] == "calclCompile") {
      i += 4;
      flagged |= i < words.size() && parseVariantName(words[i]) != nullptr;
    }
  }
  return flagged;
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  // The copy has the exact size, so that a sanitizer notices a read past its
  // end.
  std::vector<char> log(data, data + size);
  log.push_back('\0');
  const std::string text = log.data();
  check(screenBuildLog(log.data()) == isFlagged(wordsOf(text)),
        "a log is flagged by the words in it");
  return 0;
}
