// Tests of what the analysis finds, by the text that --analysis prints.
#include "tests/coarsening/Sources.h"

using corvane::test::coarsened;

/// The analysis for the only kernel of `source`.
static std::string analysis(llvm::StringRef source, llvm::StringRef plan) {
  const auto result = coarsened(source, plan);
  EXPECT_EQ(result.variants.size(), 1U);
  return result.variants.empty() ? "" : result.variants.front().analysis;
}

TEST(Variance, FollowsValuesThroughVariables) {
  EXPECT_EQ(analysis("kernel void k(global int *a, int n) {\n"
                     "int x = get_global_id(0), y = n, z = x + y, w;\n"
                     "w = z; y += 2; a[w] = y; }",
                     "g0S2"),
            "differs: x\ndiffers: z\ndiffers: w\n");
}

TEST(Variance, KeepsIdsOfOtherDimensionsTogether) {
  EXPECT_EQ(analysis("kernel void k(global int *a) {\n"
                     "int x = get_global_id(0), y = get_global_id(1);\n"
                     "a[x] = y; }",
                     "g1S2"),
            "differs: y\n");
}

TEST(Variance, TellsGroupsFromLocalIds) {
  const char *source = "kernel void k(global int *a) {\n"
                       "int l = get_local_id(0); int g = get_group_id(0);\n"
                       "a[g] = l; }";
  EXPECT_EQ(analysis(source, "g0S2"), "differs: g\n");
  EXPECT_EQ(analysis(source, "l0S2"), "differs: l\n");
}

TEST(Variance, CopiesALoopThatEndsEarlierForSome) {
  EXPECT_EQ(analysis("kernel void k(global int *a) {\n"
                     "int i = get_global_id(0); int s = 0;\n"
                     "for (int j = 0; j < 9; ++j) {\n"
                     "if (a[i] == j) break;\n"
                     "s += j; }\n"
                     "a[i] = s; }",
                     "g0S2"),
            "differs: i\ndiffers: s\ncopied: line 3\ncopied: line 4\n");
}

TEST(Variance, SharesALoopAroundABranchThatDiffers) {
  EXPECT_EQ(analysis("kernel void k(global int *a) {\n"
                     "int i = get_global_id(0); int s = 0;\n"
                     "for (int j = 0; j < 9; ++j)\n"
                     "if (a[i] == j) s += j;\n"
                     "a[i] = s; }",
                     "g0S2"),
            "differs: i\ndiffers: s\ncopied: line 4\n");
}

TEST(Variance, GuardsWhatAllUsuallyDoTogether) {
  EXPECT_EQ(analysis("kernel void k(global int *a, int n) {\n"
                     "int i = get_global_id(0); int s = 0;\n"
                     "if (i >= n) return;\n"
                     "for (int j = 0; j < n; ++j) s += a[j];\n"
                     "a[i] = s; }",
                     "g0S2"),
            "differs: i\nguard: line 3\n");
}

TEST(Variance, MakesWhatOnlySomeChangeDiffer) {
  EXPECT_EQ(analysis("kernel void k(global int *a, int n) {\n"
                     "int s = 0;\n"
                     "if (get_global_id(0) < n) { s = 1; }\n"
                     "a[get_global_id(0)] = s; }",
                     "g0S2"),
            "differs: s\nguard: line 3\n");
}

TEST(Variance, CopiesEverythingAfterSomeHaveReturned) {
  EXPECT_EQ(analysis("kernel void k(global int *a, int n) {\n"
                     "int i = get_global_id(0);\n"
                     "a[i] = 1;\n"
                     "if (a[i] > n) { if (a[i] > 7) return; a[i] = 2; }\n"
                     "a[i] = 3; }",
                     "g0S2"),
            "differs: i\ncopied to the end: from line 4\n");
}

TEST(Variance, SeesAGuardInABranchThatWorksAndReturns) {
  EXPECT_EQ(analysis("kernel void k(global int *a, int n) {\n"
                     "int i = get_global_id(0);\n"
                     "a[i] = 1;\n"
                     "if (a[i] > n) { a[i] = 2; return; }\n"
                     "a[i] = 3; }",
                     "g0S2"),
            "differs: i\nguard: line 4\n");
}

TEST(Variance, SharesLocalMemoryThatIsTheSameInEveryGroup) {
  const char *source = "kernel void k(global int *a) {\n"
                       "local int same[8], own[8];\n"
                       "int l = get_local_id(0);\n"
                       "same[l] = a[l]; own[l] = a[get_global_id(0)];\n"
                       "barrier(CLK_LOCAL_MEM_FENCE);\n"
                       "a[get_global_id(0)] = same[0] + own[1]; }";
  EXPECT_EQ(analysis(source, "g0S2"), "differs: own\n");
  EXPECT_EQ(analysis(source, "l0S2"), "differs: l\n");
}

TEST(Variance, TakesLocalMemoryReachedByPointersForDifferentOnceOneStoreIs) {
  EXPECT_EQ(analysis("kernel void k(global int *a) {\n"
                     "local int t[8]; local int *p = t;\n"
                     "p[get_local_id(0)] = a[get_global_id(0)];\n"
                     "barrier(CLK_LOCAL_MEM_FENCE);\n"
                     "a[get_global_id(0)] = t[0]; }",
                     "g0S2"),
            "differs: t\ndiffers: p\n");
}

TEST(Variance, GivesEachItsOwnVariableWhoseAddressIsTaken) {
  EXPECT_EQ(analysis("kernel void k(global float *a, float x) {\n"
                     "float c, s = sincos(x, &c);\n"
                     "a[get_global_id(0)] = s + c; }",
                     "g0S2"),
            "differs: c\ndiffers: s\n");
}

TEST(Variance, CountsWhatDependsOnTheOldValueInMemory) {
  EXPECT_EQ(
      analysis("kernel void k(global int *a) {\n"
               "int old = a[0]++; int i = get_global_id(0); a[i] = old; }",
               "g0S2"),
      "differs: old\ndiffers: i\n");
}

TEST(Variance, SeesTheGlobalIdInGroupsAndSizes) {
  const char *source = "kernel void k(global int *a) {\n"
                       "int i = get_local_id(0) + (int)get_local_size(0) *\n"
                       "(int)get_group_id(0); a[i] = 1; }";
  EXPECT_EQ(analysis(source, "adjacent:g0S2"), "differs: i\n");
  EXPECT_EQ(analysis("kernel void k(global int *a) {\n"
                     "const int l = get_local_id(0), g = get_group_id(0);\n"
                     "a[g * get_local_size(0) + l] = 1; }",
                     "adjacent:g0S2"),
            "differs: g\n");
}

TEST(Variance, SeesTheGlobalIdInProductsOf24Bits) {
  EXPECT_EQ(analysis("kernel void k(global int *a) {\n"
                     "int i = mad24((int)get_group_id(0),\n"
                     "(int)get_local_size(0), (int)get_local_id(0));\n"
                     "int j = (int)get_local_id(0) +\n"
                     "mul24((int)get_local_size(0), (int)get_group_id(0));\n"
                     "a[i] = j; }",
                     "adjacent:g0S2"),
            "differs: i\ndiffers: j\n");
}

TEST(Variance, SeesNoGlobalIdWhereAPartIsUsedAloneAsWell) {
  const auto result =
      coarsened("kernel void k(global int *a) { int l = get_local_id(0);\n"
                "a[get_group_id(0) * get_local_size(0) + l] = l; }",
                "adjacent:g0S2");
  EXPECT_THAT(corvane::test::outcomes(result),
              testing::ElementsAre("local-ids"));
}
