// Makes names that are safe in files and links, and the pages with the links.

#include "results/report/PageLinks.h"

#include "base/Platform.h"
#include "results/ResultFiles.h"
#include "results/report/SafeText.h"

#include "llvm/ADT/STLExtras.h"
#include "llvm/ADT/StringExtras.h"

#include <algorithm>
#include <string_view>

using namespace corvane;

static std::string dimension(const char *name, const std::string &global,
                             const std::string &local) {
  return global.empty() ? "" : name + global + "/" + local;
}

// "y" and "z" have their comma even where no other dimension comes first.
std::string corvane::configTitle(const LaunchKey &key) {
  return key.kernel + " [ " + dimension("x:", key.xGlobal, key.xLocal) +
         dimension(", y:", key.yGlobal, key.yLocal) +
         dimension(", z:", key.zGlobal, key.zLocal) + " ] ";
}

// File systems take names of 255 bytes at most.
static constexpr std::size_t mostBytes =
    255 - std::string_view(resultFile::graphPage).size();

// How many bytes of a name are kept when it gets a number. So few because paths
// have a limit of their own.
static constexpr std::size_t keptBytes = 150;

static bool isNameCharacter(char c) {
  return llvm::isAlnum(c) || c == '_' || c == '$';
}

static bool isSize(const std::string &text) {
  return llvm::all_of(text, [](char c) { return llvm::isDigit(c); });
}

static bool isOrdinary(const LaunchKey &key) {
  return llvm::all_of(key.fields(), [&](const std::string *field) {
    return field == &key.kernel ? llvm::all_of(*field, isNameCharacter)
                                : isSize(*field);
  });
}

// The result is unique: ordinary names have no "-", and each number is used
// once.
static std::string numbered(std::string name, std::size_t number) {
  name.resize(std::min(name.size(), keptBytes));
  std::replace_if(
      name.begin(), name.end(), [](char c) { return !isNameCharacter(c); },
      '-');
  return name + "-" + std::to_string(number);
}

std::string PageNames::nameFor(const LaunchKey &key) {
  ++count;
  std::string name = joinedFields(key, '_');
  if (isOrdinary(key) && name.size() <= mostBytes &&
      taken.insert(platform::comparableFileName(name)).second)
    return name;
  return numbered(std::move(name), count);
}

void corvane::writeFramePage(llvm::raw_ostream &out, const std::string &base) {
  out << "<!DOCTYPE html>\n"
         "<html>"
         "<frameset rows = \"50%,*\">\n"
         "<frame src=\""
      << base << resultFile::tablePage
      << "\">\n"
         "<frame src=\""
      << base << resultFile::graphPage
      << "\">\n"
         "</frameset>\n"
         "</html>";
}

void corvane::writeIndexPage(llvm::raw_ostream &out,
                             const std::vector<IndexEntry> &entries) {
  out << "<!DOCTYPE html>\n"
         "<html>\n"
         "<b>Kernels</b>\n"
         "<ul>\n";
  for (const IndexEntry &entry : entries)
    out << "<li><a class=\"el\" href=\"" << entry.page
        << "\" target=\"basefrm\"> " << htmlText(entry.title) << " </a> \n";
  out << "</ul>\n"
         "</html>\n";
}

void corvane::writeMainPage(llvm::raw_ostream &out,
                            const std::vector<IndexEntry> &entries) {
  // The head stands before the html tag; browsers have always coped.
  out << "<!DOCTYPE html>\n"
         "<head><title>AUTOTUNE OUTPUT</title></head>\n"
         "<html>\n"
         "<frameset cols = \"20%,*\">\n"
         "<frame src=\""
      << resultFile::pageFolder << '/' << resultFile::indexPage
      << "\" name=\"indexfrm\">\n"
         "<frame src=\""
      << resultFile::pageFolder << '/'
      << (entries.empty() ? "" : entries.front().page)
      << "\" name=\"basefrm\">\n"
         "</frameset>\n"
         "</html>\n";
}
