// Tests of the page as text; tests/browser looks at it in a browser.

#include "MadeOverview.h"

#include "results/overview/Page.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

static std::string pageOf(const Overview &overview) {
  std::string text;
  llvm::raw_string_ostream out(text);
  writePage(out, overview);
  return out.str();
}

static std::size_t countOf(const std::string &text, const std::string &what) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos;
       at += what.size())
    ++count;
  return count;
}

TEST(Page, HasStyleScriptAndData) {
  const std::string page = pageOf(overviewOf({eventfulRun()}));
  EXPECT_THAT(page, AllOf(testing::StartsWith("<!DOCTYPE html>"),
                          HasSubstr("@media print"), HasSubstr("JSON.parse"),
                          HasSubstr("\"format\":\"corvane-report\""),
                          testing::EndsWith("</html>\n")));
  EXPECT_THAT(page, Not(HasSubstr("@DATA@")));
}

TEST(Page, LoadsNothing) {
  const std::string page = pageOf(overviewOf({}));
  EXPECT_THAT(page,
              AllOf(Not(HasSubstr("https://")), Not(HasSubstr("src=")),
                    Not(HasSubstr("@import")), Not(HasSubstr("<iframe"))));
}

TEST(Page, CannotBeChangedByANameInTheData) {
  const std::string plain = pageOf(overviewOf({eventfulRun()}));
  RunRecord hostile = eventfulRun();
  hostile.configurations[0].line.kernel =
      "</script><script>ran(1)</script><!-- <img src=x onerror=ran(2)> @STYLE@";
  const std::string page = pageOf(overviewOf({hostile}));
  for (const char *markup : {"<script", "</script", "<!--", "<img", "<style"})
    EXPECT_EQ(countOf(page, markup), countOf(plain, markup)) << markup;
}
