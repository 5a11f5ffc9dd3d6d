// The pages of frames and links: one for each configuration, the index and the
// main page.

#include "results/ResultFiles.h"
#include "results/report/Pages.h"
#include "results/report/SafeText.h"

using namespace corvane;

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
