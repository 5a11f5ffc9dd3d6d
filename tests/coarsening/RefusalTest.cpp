// Tests of the reasons to refuse a variant, with a program for each.
#include "tests/coarsening/Sources.h"

using corvane::test::coarsened;
using corvane::test::outcomes;
using testing::ElementsAre;

namespace {

struct Case {
  const char *reason;
  const char *plan;
  const char *source;
  const char *standard = "CL1.2";
};

void PrintTo(const Case &example, std::ostream *out) { *out << example.reason; }

class Refusals : public testing::TestWithParam<Case> {};

} // namespace

TEST_P(Refusals, NameTheReason) {
  EXPECT_THAT(
      outcomes(coarsened(GetParam().source, GetParam().plan,
                         {std::string("-cl-std=") + GetParam().standard})),
      ElementsAre(GetParam().reason));
}

static const Case cases[] = {
    {"no-ids", "g1S2",
     "kernel void k(global int *a) { a[get_global_id(0)] = 1; }"},
    {"computed-dimension", "g0S2",
     "kernel void k(global int *a, int d) { a[get_global_id(d)] = 1; }"},
    {"linear-id", "g0S2",
     "kernel void k(global int *a) { a[get_global_linear_id()] = "
     "get_global_id(0); }",
     "CL2.0"},
    {"goto", "g0S2",
     "kernel void k(global int *a) { int i = get_global_id(0);\n"
     "again: a[i] = 1; if (i < 0) goto again; }"},
    {"inline-assembly", "g0S2",
     "kernel void k(global int *a) { __asm__(\"\"); a[get_global_id(0)] = 1; "
     "}"},
    {"statement-expression", "g0S2",
     "kernel void k(global int *a) { a[get_global_id(0)] = ({ int i = 1; i; "
     "}); "
     "}"},
    {"indirect-call", "g0S2",
     "#pragma OPENCL EXTENSION __cl_clang_function_pointers : enable\n"
     "int f(int i) { return i; }\n"
     "kernel void k(global int *a) {\n"
     "a[get_global_id(0)] = (a[0] ? f : f)(1); }"},
    {"calls-kernel", "g0S2",
     "kernel void j_coarsed_g0S2(global int *a) { *a = 1; }\n"
     "void h(global int *a) { j_coarsed_g0S2(a); }\n"
     "kernel void k(global int *a) { h(a + get_global_id(0)); }"},
    {"recursion", "g0S2",
     "int f(int i) { return i > 0 ? f(i - 1) : 0; }\n"
     "kernel void k(global int *a) { a[get_global_id(0)] = f(3); }"},
    {"unknown-function", "g0S2",
     "int f(int i);\n"
     "kernel void k(global int *a) { a[get_global_id(0)] = f(3); }"},
    {"unknown-statement", "g0S2",
     "kernel void k(global int *a) { a[get_global_id(0)] = 1;\n"
     "#pragma clang __debug captured\n{ } }"},
    {"printf", "g0S2",
     "kernel void k(global int *a) { printf(\"%d\", (int)get_global_id(0)); }"},
    {"device-queue", "g0S2",
     "kernel void k(global int *a) { int (^b)(int) = ^(int i) { return i; };\n"
     "a[get_global_id(0)] = b(1); }",
     "CL2.0"},
    {"pipe", "g0S2",
     "kernel void k(read_only pipe int p, global int *a) {\n"
     "int i; read_pipe(p, &i); a[get_global_id(0)] = i; }",
     "CL2.0"},
    {"collective", "g0S2",
     "kernel void k(global int *a) { a[get_global_id(0)] = "
     "work_group_reduce_add(1); }",
     "CL2.0"},
    {"sub-group", "g0S2",
     "#pragma OPENCL EXTENSION cl_khr_subgroups : enable\n"
     "kernel void k(global int *a) { a[get_global_id(0)] = "
     "get_sub_group_size(); }",
     "CL2.0"},
    {"async-copy", "g0S2",
     "kernel void k(global int *a, local int *t) {\n"
     "event_t e = async_work_group_copy(t, a, 4, 0); wait_group_events(1, "
     "&e);\n"
     "a[get_global_id(0)] = t[0]; }"},
    {"static-variable", "g0S2",
     "kernel void k(global int *a) { static int n = 0; "
     "a[get_global_id(0)] = n; }",
     "CL2.0"},
    {"program-variable", "g0S2",
     "global int n = 0;\n"
     "kernel void k(global int *a) { a[get_global_id(0)] = n; }",
     "CL2.0"},
    {"barrier-in-helper", "g0S2",
     "void f(int n) { if (n) return; barrier(CLK_LOCAL_MEM_FENCE); }\n"
     "kernel void k(global int *a, int n) { f(n); a[get_global_id(0)] = 1; }"},
    {"barrier-in-helper", "g0S2",
     "int f(int n) { barrier(CLK_LOCAL_MEM_FENCE); return n; }\n"
     "kernel void k(global int *a, int n) { a[get_global_id(0)] = f(1) + 1; }"},
    {"barrier-in-helper", "g0S2",
     "constant int n = 3;\n"
     "int f() { barrier(CLK_LOCAL_MEM_FENCE); return n; }\n"
     "kernel void k(global int *a) { int n = 2;\n"
     "int i = f(); a[get_global_id(0)] = i + n; }"},
    {"barrier-in-expression", "g0S2",
     "kernel void k(global int *a) { a[get_global_id(0)] = 1;\n"
     "(barrier(CLK_LOCAL_MEM_FENCE), a[0]); }"},
    {"barrier-diverges", "block:g0S2",
     "kernel void k(global int *a) { for (int i = 0; i < 2; ++i)\n"
     "if (get_group_id(0) == i) { barrier(CLK_LOCAL_MEM_FENCE); a[i] = 1; } }"},
    {"atomic-loop", "g0S2",
     "kernel void k(global int *a, global int *lock) {\n"
     "while (atomic_xchg(lock, 1)) ; a[get_global_id(0)] = 1; "
     "atomic_xchg(lock, 0); }"},
    {"atomic-loop", "g0S2",
     "void f(global int *lock) { while (atomic_xchg(lock, 1)) ; }\n"
     "kernel void k(global int *a, global int *lock) {\n"
     "f(lock); a[get_global_id(0)] = 1; atomic_xchg(lock, 0); }"},
    {"atomic-loop", "g0S2",
     "kernel void k(global int *a, volatile global int *lock) {\n"
     "int open = 0; for (;;) { open = *lock; if (open) break; }\n"
     "a[get_global_id(0)] = 1; }"},
    {"volatile-local", "l0S2",
     "kernel void k(global int *a) { volatile local int t[8];\n"
     "t[get_local_id(0)] = 1; a[get_global_id(0)] = t[0]; }"},
    {"local-argument", "g0S2",
     "kernel void k(global int *a, local int *t) {\n"
     "t[get_local_id(0)] = a[get_global_id(0)]; barrier(CLK_LOCAL_MEM_FENCE);\n"
     "a[get_global_id(0)] = t[0]; }"},
    {"local-argument", "g0S2",
     "kernel void k(global int *a, local int *t) {\n"
     "atomic_inc(t); barrier(CLK_LOCAL_MEM_FENCE);\n"
     "a[get_global_id(0)] = t[0]; }"},
    {"local-ids", "adjacent:g0S2",
     "kernel void k(global int *a) { a[get_global_id(0)] = get_local_id(0); }"},
    {"local-ids", "stride:g0S2",
     "kernel void k(global int *a) { a[get_global_id(0)] = get_group_id(0); }"},
    {"local-ids", "adjacent:g0S2",
     "kernel void k(global int *a) { barrier(CLK_GLOBAL_MEM_FENCE);\n"
     "a[get_global_id(0)] = 1; }"},
    {"sequential-group", "seq:l0S2",
     "kernel void k(global int *a) { barrier(CLK_GLOBAL_MEM_FENCE);\n"
     "a[get_global_id(0)] = 1; }"},
    {"work-group-size", "l0S2",
     "__attribute__((reqd_work_group_size(3, 1, 1)))\n"
     "kernel void k(global int *a) { a[get_global_id(0)] = 1; }"},
    {"name-taken", "g0S2",
     "kernel void k(global int *a) { a[get_global_id(0)] = 1; }\n"
     "kernel void k_coarsed_g0S2(global int *a) { a[get_global_id(0)] = 1; }"},
    {"type-in-declaration", "g0S2",
     "kernel void k(global int *a) { struct { int i; } s;\n"
     "s.i = get_global_id(0); a[s.i] = 1; }"},
};

INSTANTIATE_TEST_SUITE_P(Of, Refusals, testing::ValuesIn(cases));

TEST(RefusedPlans, NameWhatIsTooLarge) {
  std::string source = "kernel void k(global int *a) {\n";
  for (int i = 0; i < 9000; ++i)
    source += "a[get_global_id(0)] += 1;\n";
  EXPECT_THAT(outcomes(coarsened(source + "}", "g0S8")),
              ElementsAre("too-large"));
}

TEST(RefusedPlans, OfALongProgramLeaveEachKernelOne) {
  std::string work;
  for (int i = 0; i < 1300; ++i)
    work += "a[get_global_id(0)] += 1;\n";
  const auto result =
      coarsened("kernel void k1(global int *a) {" + work +
                    "}\nkernel void k2(global int *a) {" + work + "}",
                "g0S2,g0S4");
  EXPECT_THAT(outcomes(result),
              ElementsAre("made", "made", "too-large", "too-large"));
  ASSERT_EQ(result.variants.size(), 2U);
  EXPECT_EQ(result.variants[0].kernel, "k1");
  EXPECT_EQ(result.variants[1].kernel, "k2");
}

TEST(RefusedPlans, OfOnePlanLeaveTheOthers) {
  EXPECT_THAT(outcomes(coarsened("kernel void k(global int *a) {\n"
                                 "a[get_global_id(0)] = get_local_id(0); }",
                                 "g0S2,adjacent:g0S2,g1S2")),
              ElementsAre("made", "local-ids", "no-ids"));
}

TEST(Programs, ThatCannotBeReadComeBackAsTheyAre) {
  const auto result = coarsened("kernel void k(", "g0S2");
  EXPECT_TRUE(result.error);
  EXPECT_EQ(result.program, "kernel void k(");
}

TEST(Programs, WithoutVariantsComeBackAsTheyAre) {
  const char *source = "kernel void k(global int *a) { *a = 1; }";
  EXPECT_EQ(coarsened(source, "g0S2").program, source);
}
