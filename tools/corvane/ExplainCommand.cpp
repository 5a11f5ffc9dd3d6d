// corvane explain: says for each kernel which version runs, and why.

#include "results/overview/Explanation.h"
#include "results/overview/Reasons.h"
#include "tools/corvane/Command.h"
#include "tools/corvane/OutputText.h"
#include "tools/corvane/ResultFolders.h"

using namespace corvane;

// Line by line: the names in it may have characters that move the cursor.
static std::string printableLines(llvm::StringRef text) {
  std::string lines;
  while (!text.empty()) {
    const auto [line, rest] = text.split('\n');
    lines += printable(line) + '\n';
    text = rest;
  }
  return lines;
}

int corvane::explain(const ExplainOptions &options) {
  const std::optional<RunSet> runs = readResults({options.folder});
  if (!runs)
    return CommandFailed;
  const Overview overview = makeOverview(*runs);
  std::string text;
  llvm::raw_string_ostream stream(text);
  if (!explain(stream, overview, options.kernel) && !options.kernel.empty()) {
    say("no kernel is called " + options.kernel + " in " + options.folder);
    return CommandFailed;
  }
  const std::string remark = remarkOn(overview) + "\n";
  const std::string kernels = stream.str().empty() ? "" : "\n" + stream.str();
  llvm::Error error = replaceFile("-", printableLines(remark + kernels));
  if (!error)
    return 0;
  say(llvm::toString(std::move(error)));
  return CommandFailed;
}
