// Tests of the frame, index and main page, byte for byte.

#include "results/report/PageLinks.h"

#include "Configs.h"

#include <gtest/gtest.h>

using namespace corvane;
using namespace corvane::test;

static std::string indexOf(const std::vector<IndexEntry> &entries) {
  return written([&](llvm::raw_ostream &out) { writeIndexPage(out, entries); });
}

static std::string mainOf(const std::vector<IndexEntry> &entries) {
  return written([&](llvm::raw_ostream &out) { writeMainPage(out, entries); });
}

TEST(FramePage, PutsTheTableAboveTheGraph) {
  EXPECT_EQ(written([](llvm::raw_ostream &out) { writeFramePage(out, "k_1"); }),
            "<!DOCTYPE html>\n"
            "<html><frameset rows = \"50%,*\">\n"
            "<frame src=\"k_1_table.html\">\n"
            "<frame src=\"k_1_graph.html\">\n"
            "</frameset>\n"
            "</html>");
}

TEST(IndexPage, ListsTheConfigurationsInTheirOrder) {
  EXPECT_EQ(indexOf({{"z [ x:1/1 ] ", "z_1___1__.html"},
                     {"a [ x:2/1 ] ", "a_2___1__.html"}}),
            "<!DOCTYPE html>\n"
            "<html>\n"
            "<b>Kernels</b>\n"
            "<ul>\n"
            "<li><a class=\"el\" href=\"z_1___1__.html\" target=\"basefrm\"> "
            "z [ x:1/1 ]  </a> \n"
            "<li><a class=\"el\" href=\"a_2___1__.html\" target=\"basefrm\"> "
            "a [ x:2/1 ]  </a> \n"
            "</ul>\n"
            "</html>\n");
}

TEST(IndexPage, KeepsHostileTitlesInTheirPlaces) {
  EXPECT_EQ(indexOf({{"</a><img src=x onerror=\"x()\">", "k-1.html"}}),
            "<!DOCTYPE html>\n"
            "<html>\n"
            "<b>Kernels</b>\n"
            "<ul>\n"
            "<li><a class=\"el\" href=\"k-1.html\" target=\"basefrm\"> "
            "&#60;/a&#62;&#60;img src=x onerror=&#34;x()&#34;&#62; </a> \n"
            "</ul>\n"
            "</html>\n");
}

TEST(IndexPage, HasAnEmptyListWithoutConfigurations) {
  EXPECT_EQ(indexOf({}), "<!DOCTYPE html>\n"
                         "<html>\n"
                         "<b>Kernels</b>\n"
                         "<ul>\n"
                         "</ul>\n"
                         "</html>\n");
}

TEST(MainPage, ShowsTheFirstConfigurationBesideTheIndex) {
  EXPECT_EQ(mainOf({{"z", "z.html"}, {"a", "a.html"}}),
            "<!DOCTYPE html>\n"
            "<head><title>AUTOTUNE OUTPUT</title></head>\n"
            "<html>\n"
            "<frameset cols = \"20%,*\">\n"
            "<frame src=\"html/index.html\" name=\"indexfrm\">\n"
            "<frame src=\"html/z.html\" name=\"basefrm\">\n"
            "</frameset>\n"
            "</html>\n");
}

TEST(MainPage, ShowsAnEmptyFrameWithoutConfigurations) {
  EXPECT_EQ(mainOf({}), "<!DOCTYPE html>\n"
                        "<head><title>AUTOTUNE OUTPUT</title></head>\n"
                        "<html>\n"
                        "<frameset cols = \"20%,*\">\n"
                        "<frame src=\"html/index.html\" name=\"indexfrm\">\n"
                        "<frame src=\"html/\" name=\"basefrm\">\n"
                        "</frameset>\n"
                        "</html>\n");
}
