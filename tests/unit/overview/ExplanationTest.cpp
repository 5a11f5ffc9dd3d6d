// Tests of explanations.

#include "MadeOverview.h"

#include "results/overview/Explanation.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;

static std::string explained(const Overview &overview,
                             const char *kernel = "") {
  std::string text;
  llvm::raw_string_ostream out(text);
  (void)explain(out, overview, kernel);
  return out.str();
}

TEST(Explanation, SaysWhyOfEveryVersion) {
  EXPECT_EQ(explained(overviewOf({eventfulRun()})),
            R"(scale (program abc)
  variants found: 2
    g0S2: each work-item does 2 columns
    g0S4: each work-item does 4 columns
  scale_coarsed_g4 looks like a variant and is not: an item has too few numbers
  1022 / 2 on device, 10 launches: uses g0S2; faster
    original, 100.0 us, 7 samples, ran in 10 launches
    l0S2, 19.9 us, 1 sample: wrong results: argument 2, element 17 is nan instead of 1.5
    g0S2, 50.0 us, 7 samples: 2.00x (1.99x to 2.01x): the fastest
    g0S4, 100.0 us, 7 samples: 1.00x (1.00x to 1.00x): no difference
    c0S2: was not measured
    g0S16: does not take these sizes: 1022 is not a multiple of 256

fill (program abc)
  no variants were found
)");
}

TEST(Explanation, IsOfOneKernelIfItIsNamed) {
  const Overview overview = overviewOf({eventfulRun()});
  EXPECT_EQ(explained(overview, "fill"),
            "fill (program abc)\n  no variants were found\n");
  llvm::raw_null_ostream out;
  EXPECT_TRUE(explain(out, overview, "fill"));
  EXPECT_FALSE(explain(out, overview, "sort"));
}
