// Makes pages twice: from the names of the log, and from harmless ones.

#include "tests/fuzz/Pages.h"

#include "results/Report.h"
#include "results/ResultFiles.h"
#include "results/report/PageLinks.h"
#include "results/report/Pages.h"
#include "tests/fuzz/Input.h"

#include "llvm/Support/raw_ostream.h"

#include <algorithm>

using namespace corvane;
using namespace corvane::fuzz;

template <typename Write> static std::string written(Write write) {
  std::string text;
  llvm::raw_string_ostream out(text);
  write(out);
  out.flush();
  return text;
}

static void addPages(Files &files, const std::string &installLocation,
                     const RankedConfig &config, const std::string &base,
                     LineRange lines) {
  const auto add = [&](const char *ending, const std::string &page) {
    check(files.try_emplace("html/" + base + ending, page).second,
          "no page has another one's name");
  };
  add("_graph.html", written([&](llvm::raw_ostream &out) {
        writeGraphPage(out, config, installLocation);
      }));
  add("_table.html", written([&](llvm::raw_ostream &out) {
        writeTablePage(out, config, lines);
      }));
  add(".html",
      written([&](llvm::raw_ostream &out) { writeFramePage(out, base); }));
}

Files corvane::fuzz::makeFiles(const std::vector<RankedConfig> &configs,
                               const std::string &installLocation) {
  Files files;
  std::vector<IndexEntry> entries;
  PageNames names;
  files["autotune.csv"] = written([&](llvm::raw_ostream &out) {
    ResultsTable table(out);
    for (const RankedConfig &config : configs) {
      const std::string base = names.nameFor(config.launchKey);
      addPages(files, installLocation, config, base, table.addRows(config));
      entries.push_back({configTitle(config.launchKey), base + ".html"});
    }
  });
  files["html/index.html"] =
      written([&](llvm::raw_ostream &out) { writeIndexPage(out, entries); });
  files["main.html"] =
      written([&](llvm::raw_ostream &out) { writeMainPage(out, entries); });
  return files;
}

// The same configuration with harmless names. The number in the kernel's name
// keeps the pages of configurations apart.
static RankedConfig masked(const RankedConfig &config, std::size_t number) {
  RankedConfig mask = config;
  for (std::string *field : mask.launchKey.fields())
    if (!field->empty())
      *field = "1";
  mask.launchKey.kernel = "k" + std::to_string(number);
  for (auto &[name, stats] : mask.ranking)
    if (name != baselineName)
      name = "v";
  return mask;
}

// The characters of a page that give it its form.
static std::string formOf(const std::string &page) {
  std::string form;
  for (const char c : page)
    if (c == '<' || c == '>' || c == '"' || c == '\'' || c == '\n')
      form += c;
  return form;
}

static bool isPlain(char c) { return (c >= ' ' && c <= '~') || c == '\n'; }

// Whether all escapes are those of our own lines, or characters by number.
static bool escapesAreOurs(const std::string &page) {
  for (std::size_t at = page.find("\"iter"); at < page.size(); ++at) {
    if (page[at] != '\\' || page[at + 1] == 'n')
      continue;
    const std::string digits = page.substr(at + 2, 4);
    if (page[at + 1] != 'u' || digits.size() != 4 ||
        digits.find_first_not_of("0123456789ABCDEF") != std::string::npos)
      return false;
  }
  return true;
}

static void checkPage(const std::string &page, const std::string &harmless) {
  check(std::all_of(page.begin(), page.end(), isPlain), "pages are ASCII");
  check(formOf(page) == formOf(harmless), "no name changes the form of a page");
  check(escapesAreOurs(page), "a script has no escapes but ours");
}

static bool isFileName(const std::string &name) {
  return name.size() <= 255 &&
         std::all_of(name.begin(), name.end(), [](char c) {
           return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                  (c >= '0' && c <= '9') || c == '_' || c == '$' || c == '-' ||
                  c == '.';
         });
}

void corvane::fuzz::checkNames(const std::vector<RankedConfig> &configs,
                               const std::string &installLocation,
                               const Files &files) {
  std::vector<RankedConfig> masks;
  for (const RankedConfig &config : configs)
    masks.push_back(masked(config, masks.size() + 1));
  const Files harmless = makeFiles(masks, installLocation);

  for (const char *page : {"main.html", "html/index.html"})
    checkPage(files.at(page), harmless.at(page));
  PageNames names;
  PageNames harmlessNames;
  for (std::size_t i = 0; i != configs.size(); ++i) {
    const std::string base = names.nameFor(configs[i].launchKey);
    const std::string harmlessBase = harmlessNames.nameFor(masks[i].launchKey);
    for (const char *ending : {"_graph.html", "_table.html", ".html"}) {
      check(isFileName(base + ending), "a page's name is fit for a file");
      checkPage(files.at("html/" + base + ending),
                harmless.at("html/" + harmlessBase + ending));
    }
  }
}
