// Tests of which files a report consists of, and that each is written although
// another one cannot be.

#include "results/Report.h"

#include "Configs.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

struct Report : testing::Test {
  TempFolder folder;
  ReportJob job;

  Report() {
    job.outputDirectory = folder.text();
    job.installLocation = "/opt/x";
    std::filesystem::create_directory(folder.file("html"));
  }

  /// Writes the report. Returns one line for each file that could not be
  /// written.
  std::string write() { return llvm::toString(writeResultFiles(job)); }

  /// All files in the folder, by their paths from there.
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto &entry :
         std::filesystem::recursive_directory_iterator(folder.path()))
      if (!entry.is_directory())
        names.push_back(
            entry.path().lexically_relative(folder.path()).generic_string());
    std::sort(names.begin(), names.end());
    return names;
  }
};

} // namespace

TEST_F(Report, WritesThreePagesAConfigurationBesideTheCommonFiles) {
  job.configs = {config("b", {{"baseline", {1}}}),
                 config("a", {{"baseline", {1}}})};
  EXPECT_EQ(write(), "");
  EXPECT_THAT(files(), ElementsAre("autotune.csv", "html/a_1024___64__.html",
                                   "html/a_1024___64___graph.html",
                                   "html/a_1024___64___table.html",
                                   "html/b_1024___64__.html",
                                   "html/b_1024___64___graph.html",
                                   "html/b_1024___64___table.html",
                                   "html/index.html", "main.html"));
}

TEST_F(Report, PutsEachPageUnderItsName) {
  job.configs = {config("k", {{"baseline", {1}}})};
  EXPECT_EQ(write(), "");
  EXPECT_THAT(folder.read("html/k_1024___64___graph.html"),
              HasSubstr("src=\"file:///opt/x/dygraph-combined.js\""));
  EXPECT_THAT(folder.read("html/k_1024___64___table.html"),
              StartsWith("<html><body>\n<table"));
  EXPECT_THAT(folder.read("html/k_1024___64__.html"),
              HasSubstr("<frame src=\"k_1024___64___table.html\">"));
  EXPECT_THAT(folder.read("html/index.html"),
              HasSubstr("<li><a class=\"el\" href=\"k_1024___64__.html\" "
                        "target=\"basefrm\"> k [ x:1024/64 ]  </a> \n"));
  EXPECT_THAT(folder.read("main.html"),
              HasSubstr("<frame src=\"html/k_1024___64__.html\" "));
}

TEST_F(Report, WritesOnlyTheCommonFilesWithoutConfigurations) {
  EXPECT_EQ(write(), "");
  EXPECT_THAT(files(),
              ElementsAre("autotune.csv", "html/index.html", "main.html"));
  EXPECT_EQ(folder.read("autotune.csv"),
            "kernel,x_global,y_global,z_global,x_local,y_local,z_local,"
            "coarsed_kernel,time,outlier\n");
  EXPECT_THAT(folder.read("html/index.html"), HasSubstr("<ul>\n</ul>\n"));
  EXPECT_THAT(folder.read("main.html"),
              HasSubstr("<frame src=\"html/\" name=\"basefrm\">"));
}

TEST_F(Report, LinksEachTableToItsRows) {
  job.configs = {config("a", {{"baseline", {1, 2, 3}}, {"g0S4", {1, 2}}}),
                 config("b", {{"baseline", {1, 2}}})};
  EXPECT_EQ(write(), "");
  EXPECT_THAT(folder.read("html/a_1024___64___table.html"),
              HasSubstr("(line 1-5)"));
  EXPECT_THAT(folder.read("html/b_1024___64___table.html"),
              HasSubstr("(line 6-7)"));
}

TEST_F(Report, WorksForAConfigurationWithoutABaseline) {
  job.configs = {config("k", {{"g0S4", {1}}})};
  EXPECT_EQ(write(), "");
  EXPECT_THAT(folder.read("html/k_1024___64___table.html"),
              HasSubstr("<td> 1.000 </td><td> 0.0x </td>"));
  EXPECT_THAT(folder.read("html/k_1024___64___graph.html"),
              HasSubstr("\"iter,g0S4\\n\"\n+ \"1,1\\n\"\n"));
}

TEST_F(Report, ReplacesAnOlderReportAndKeepsOtherPages) {
  ASSERT_TRUE(folder.write("main.html", std::string(9999, 'x')));
  ASSERT_TRUE(folder.write("html/old_1___1__.html", "old"));
  EXPECT_EQ(write(), "");
  EXPECT_THAT(folder.read("main.html"), StartsWith("<!DOCTYPE html>\n<head>"));
  EXPECT_EQ(folder.read("html/old_1___1__.html"), "old");
}

TEST_F(Report, LeavesOutWhatCannotBeCreatedAndWritesTheRest) {
  job.configs = {config("k", {{"baseline", {1}}})};
  std::filesystem::create_directory(folder.file("autotune.csv"));
  std::filesystem::create_directory(
      folder.file("html/k_1024___64___graph.html"));
  EXPECT_EQ(write(), folder.text() + "/html/k_1024___64___graph.html" +
                         ": cannot be opened\n" + folder.text() +
                         "/autotune.csv: cannot be opened");
  EXPECT_THAT(files(),
              ElementsAre("html/index.html", "html/k_1024___64__.html",
                          "html/k_1024___64___table.html", "main.html"));
}

TEST_F(Report, WritesNothingWhereThereIsNoDirectory) {
  job.outputDirectory = folder.file("missing");
  job.configs = {config("k", {{"baseline", {1}}})};
  EXPECT_THAT(write(), HasSubstr("missing/main.html: cannot be opened"));
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(Report, WritesNoPageOutsideOfTheReport) {
  using namespace std::string_literals;
  std::filesystem::create_directory(folder.file("html/sub"));
  for (const std::string &name :
       {"../up"s, "sub/page"s, "/corvane-absolute"s, "nul\0byte"s})
    job.configs.push_back(config(name, {{"baseline", {1}}}));
  EXPECT_EQ(write(), "");
  EXPECT_THAT(files(),
              ElementsAre("autotune.csv", "html/---up_1024___64__-1.html",
                          "html/---up_1024___64__-1_graph.html",
                          "html/---up_1024___64__-1_table.html",
                          "html/-corvane-absolute_1024___64__-3.html",
                          "html/-corvane-absolute_1024___64__-3_graph.html",
                          "html/-corvane-absolute_1024___64__-3_table.html",
                          "html/index.html", "html/nul-byte_1024___64__-4.html",
                          "html/nul-byte_1024___64__-4_graph.html",
                          "html/nul-byte_1024___64__-4_table.html",
                          "html/sub-page_1024___64__-2.html",
                          "html/sub-page_1024___64__-2_graph.html",
                          "html/sub-page_1024___64__-2_table.html",
                          "main.html"));
}

TEST_F(Report, HasPagesForANameThatIsTooLongForAFile) {
  const std::string longName(5000, 'k');
  job.configs = {config(longName, {{"baseline", {1}}})};
  EXPECT_EQ(write(), "");
  const std::string page = std::string(150, 'k') + "-1.html";
  EXPECT_TRUE(folder.has("html/" + page));
  EXPECT_THAT(folder.read("html/index.html"),
              HasSubstr("href=\"" + page + "\" target=\"basefrm\"> " +
                        longName + " [ x:1024/64 ]  </a>"));
  EXPECT_THAT(folder.read("main.html"), HasSubstr("\"html/" + page + "\""));
}

TEST_F(Report, LinksEveryConfigurationToPagesOfItsOwn) {
  for (const char *name : {"k", "k/", "k\\", "k\"", "k<"})
    job.configs.push_back(config(name, {{"baseline", {1}}}));
  EXPECT_EQ(write(), "");
  const std::string index = folder.read("html/index.html");
  EXPECT_THAT(files(), SizeIs(3 + 3 * job.configs.size()));
  for (const std::string page :
       {"k_1024___64__", "k-_1024___64__-2", "k-_1024___64__-3",
        "k-_1024___64__-4", "k-_1024___64__-5"}) {
    EXPECT_THAT(index, HasSubstr("href=\"" + page + ".html\""));
    EXPECT_THAT(folder.read("html/" + page + ".html"),
                HasSubstr("<frame src=\"" + page + "_graph.html\">"));
  }
}

TEST(InstallLocation, TurnsEveryBackslash) {
  EXPECT_EQ(normalizedLocation("C:\\a\\\\b\\"), "C:/a//b/");
}

TEST(InstallLocation, LosesTheQuotesAroundIt) {
  EXPECT_EQ(normalizedLocation("\"C:\\tools\\x\""), "C:/tools/x");
}

TEST(InstallLocation, LosesOneQuoteAtEitherEnd) {
  EXPECT_EQ(normalizedLocation("\"a"), "a");
  EXPECT_EQ(normalizedLocation("a\""), "a");
  EXPECT_EQ(normalizedLocation("\"\"a\"b\"\""), "\"a\"b\"");
}

TEST(InstallLocation, SurvivesBeingShort) {
  EXPECT_EQ(normalizedLocation(""), "");
  EXPECT_EQ(normalizedLocation("\""), "");
  EXPECT_EQ(normalizedLocation("\"\""), "");
  EXPECT_EQ(normalizedLocation("\\"), "/");
}

TEST(InstallLocation, IsKeptOtherwise) {
  EXPECT_EQ(normalizedLocation(" /opt/x y/ "), " /opt/x y/ ");
}
