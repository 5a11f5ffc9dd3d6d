// Puts style, script and data into the frame of the page.

#include "results/overview/Page.h"

#include "results/overview/Exports.h"

#include <string>

using namespace corvane;

// From files in page/, by the build.
extern const char overviewFrame[];
extern const char overviewStyle[];
extern const char overviewScript[];

// JSON has these characters in texts only, where an escape means the same. A
// browser looks for the end of the script by the first of them.
static void writeHarmless(llvm::raw_ostream &out, llvm::StringRef json) {
  for (char character : json)
    switch (character) {
    case '<':
      out << "\\u003c";
      break;
    case '>':
      out << "\\u003e";
      break;
    case '&':
      out << "\\u0026";
      break;
    default:
      out << character;
    }
}

static void writeData(llvm::raw_ostream &out, const Overview &overview) {
  std::string json;
  llvm::raw_string_ostream stream(json);
  writeOverviewJson(stream, overview);
  writeHarmless(out, stream.str());
}

void corvane::writePage(llvm::raw_ostream &out, const Overview &overview) {
  // The frame has places of the form @NAME@.
  llvm::StringRef rest(overviewFrame);
  while (!rest.empty()) {
    const auto [text, afterText] = rest.split('@');
    const auto [place, afterPlace] = afterText.split('@');
    out << text;
    if (place == "STYLE")
      out << overviewStyle;
    else if (place == "SCRIPT")
      out << overviewScript;
    else if (place == "DATA")
      writeData(out, overview);
    rest = afterPlace;
  }
}
