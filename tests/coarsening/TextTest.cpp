// Tests of the text of variants.
#include "tests/coarsening/Sources.h"

using corvane::test::coarsened;
using corvane::test::variantsOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

static std::string variant(llvm::StringRef source, llvm::StringRef plan) {
  return variantsOf(coarsened(source, plan));
}

TEST(Text, WritesWhatIsSharedOnceAndWhatDiffersForEach) {
  const std::string text = variant("kernel void k(global int *a, int n) {\n"
                                   "int s = n * 2, i = get_global_id(0);\n"
                                   "a[i] = s; }",
                                   "adjacent:g0S2");
  EXPECT_THAT(text, HasSubstr("int s = n * 2; int i_cv0 = cv_gid0_0; "
                              "int i_cv1 = cv_gid0_1; "
                              "a[i_cv0] = s; a[i_cv1] = s; }"));
  EXPECT_THAT(text, HasSubstr("__kernel void k_coarsed_g0S2(global int *a, int "
                              "n) {"));
}

TEST(Text, FollowsTheSourceUnderTheConditionThatItWasMadeFor) {
  const auto result = coarsened("#define A a\n#ifdef VENDOR\n#endif\n"
                                "kernel void k(global int *A) {\n"
                                "A[get_global_id(0)] = 1; }",
                                "g0S2");
  EXPECT_THAT(result.program,
              StartsWith("#if !defined(VENDOR)\n#define CORVANE_VARIANTS_FIT\n"
                         "#endif\n#line 1\n#define A a\n"));
  EXPECT_THAT(variantsOf(result), HasSubstr("#undef A "));
}

TEST(Text, AddsNamesThatTheProgramDoesNotUse) {
  EXPECT_THAT(variant("kernel void k(global int *cv_gid0_0) {\n"
                      "cv_gid0_0[get_global_id(0)] = 1; }",
                      "g0S2"),
              HasSubstr("cv_gid0_0[cvx_gid0_0] = 1;"));
}

TEST(Text, DividesARequiredWorkGroupSizeForSmallerGroupsOnly) {
  const char *source = "__attribute__((reqd_work_group_size(8, 4, 1)))\n"
                       "kernel void k(global int *a) {\n"
                       "a[get_global_id(0)] = 1; }";
  EXPECT_THAT(variant(source, "l0S2"),
              HasSubstr("__kernel __attribute__((reqd_work_group_size(4, 4, "
                        "1))) void k_coarsed_l0S1S2g0S1("));
  EXPECT_THAT(variant(source, "g0S2"),
              HasSubstr("__kernel __attribute__((reqd_work_group_size(8, 4, "
                        "1))) void k_coarsed_g0S1S2("));
}

TEST(Text, ClonesAFunctionThatUsesIds) {
  const std::string text =
      variant("int f(int n) { return n + get_global_id(0); }\n"
              "kernel void k(global int *a) { a[f(1)] = 1; }",
              "adjacent:g0S2");
  EXPECT_THAT(text, HasSubstr("int cv_f_k_g0S2(size_t cv_gid0, int n) { return "
                              "n + cv_gid0; }"));
  EXPECT_THAT(text, HasSubstr("a[cv_f_k_g0S2(cv_gid0_1, 1)] = 1;"));
}

TEST(Text, GivesVariantsForOddSizesTheNumbersOfGroups) {
  const std::string text = variant("kernel void k(global int *a) {\n"
                                   "a[get_global_id(0)] = get_num_groups(0);}",
                                   "c0S2");
  EXPECT_THAT(text, HasSubstr("(global int *a, uint4 cv_counts)"));
  EXPECT_THAT(text, HasSubstr("] = cv_groups0;"));
}

TEST(Text, KeepsHintsInFrontOfTheirLoops) {
  EXPECT_THAT(variant("kernel void k(global int *a, int n) {\n"
                      "int i = get_global_id(0);\n"
                      "#pragma unroll 4\n"
                      "for (int j = 0; j < n; ++j) a[i] += j; }",
                      "g0S2"),
              HasSubstr("#pragma unroll 4 for (int j = 0; j < n; ++j) {"));
}

TEST(Text, LetsPointersOfDifferentOnesMeet) {
  EXPECT_THAT(variant("kernel void k(global int *restrict a, int n) {\n"
                      "global int *restrict p = a + get_global_id(0);\n"
                      "a += n; a += get_global_id(0); *p = *a; }",
                      "g0S2"),
              Not(HasSubstr("restrict p")));
}

TEST(Text, TakesVectorLiteralsAsAWhole) {
  EXPECT_THAT(variant("kernel void k(global float4 *a, float x) {\n"
                      "a[get_global_id(0)] = (float4)(x); }",
                      "g0S2"),
              HasSubstr("] = (float4)(x); a["));
}

TEST(Text, PassesOverKernelsThatAreVariants) {
  EXPECT_TRUE(coarsened("kernel void k_coarsed_g0S2(global int *a) {\n"
                        "a[get_global_id(0)] = 1; }",
                        "g0S4")
                  .variants.empty());
}

TEST(Text, ComesToOneVariantWhereTwoPlansMeanTheSame) {
  EXPECT_EQ(coarsened("kernel void k(global int *a) {\n"
                      "a[get_local_id(0)] = get_group_id(0); }",
                      "g0S4,block:g0S4")
                .variants.size(),
            1U);
}

TEST(Text, IsTheSameEveryTime) {
  const char *source = "kernel void k(global int *a, int n, int m, int o) {\n"
                       "if (get_global_id(0) > n) return;\n"
                       "n++; m++; o++; a[get_global_id(0)] = n + m + o; }";
  const std::string first = variant(source, "all");
  EXPECT_THAT(first, HasSubstr("int n_cv = n; int m_cv = m; int o_cv = o;"));
  for (int i = 0; i < 8; ++i)
    EXPECT_EQ(variant(source, "all"), first);
}

TEST(Text, PutsFunctionsWithBarriersIn) {
  EXPECT_THAT(
      variant("int f(local int *t, int n) { t[0] = n;\n"
              "barrier(CLK_LOCAL_MEM_FENCE); return t[1]; }\n"
              "kernel void k(global int *a) { local int t[2]; int n = 5;\n"
              "int m = f(t, n + 1); a[get_global_id(0)] = m; }",
              "g0S2"),
      HasSubstr("int n = 5; int cv_result0; { __local int *cv_argument1 = t; "
                "int cv_argument2 = n + 1; { __local int *t = cv_argument1; "
                "int n = cv_argument2; t[0] = n; "
                "barrier(CLK_LOCAL_MEM_FENCE); cv_result0 = t[1]; } } "
                "int m = cv_result0;"));
}
