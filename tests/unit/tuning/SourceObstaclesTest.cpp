// Tests of which programs are found to have effects besides their buffers.

#include "tuning/SourceObstacles.h"

#include <gtest/gtest.h>

#include <string>

using namespace corvane;

static std::string obstacle(llvm::StringRef source) {
  return obstacleInSource(source).str();
}

TEST(SourceObstacles, AreNoneInOrdinaryPrograms) {
  EXPECT_EQ(obstacle(""), "");
  EXPECT_EQ(obstacle(R"(
    #pragma OPENCL EXTENSION cl_khr_fp64 : enable
    #define N 4
    __constant float weights[3] = {1, 2, 3};
    constant int table[] = {1, 2}, more = 5;
    typedef struct { float x; } Point;
    struct Line { Point a, b; };
    enum Kind { A, B };
    float square(float x);
    float square(float x) { float y = x; return y * x; }
    __kernel __attribute__((reqd_work_group_size(16, 1, 1)))
    void k(global float *out, local int *t) {
      local float tile[4];
      for (int i = 0; i < N; ++i) { out[i] = square(weights[i % 3]); }
    }
    kernel void second(global int *out) { out[0] = 1; }
  )"),
            "");
}

TEST(SourceObstacles, ArePrinting) {
  EXPECT_EQ(obstacle("kernel void k() { printf(\"hello\"); }"),
            "the program prints");
  EXPECT_EQ(
      obstacle("#define say(x) printf(x)\nkernel void k() { say(\"\"); }"),
      "the program prints");
}

TEST(SourceObstacles, AreNotSeenInCommentsAndLiterals) {
  EXPECT_EQ(obstacle("// printf(\nkernel void k() {} /* pipe int x; */"), "");
  EXPECT_EQ(obstacle("constant char c[] = \"printf\\\" printf\";"), "");
  EXPECT_EQ(
      obstacle("constant char c = '\"'; kernel void k() { int sprintf; }"), "");
}

TEST(SourceObstacles, ArePipesAndDeviceSideEnqueue) {
  EXPECT_EQ(obstacle("kernel void k(read_only pipe int p) {}"),
            "the program uses pipes");
  EXPECT_EQ(obstacle("kernel void k() { enqueue_kernel(q, f, r, ^{}); }"),
            "the program enqueues kernels itself");
}

TEST(SourceObstacles, AreWritableVariablesOutsideOfFunctions) {
  const std::string writable =
      "the program has writable variables outside of functions";
  EXPECT_EQ(obstacle("global int counter = 0; kernel void k() {}"), writable);
  EXPECT_EQ(obstacle("kernel void k() { } int counter;"), writable);
  EXPECT_EQ(obstacle("global float table[2] = {1, 2};"), writable);
  EXPECT_EQ(obstacle("static global uint seeds[64];"), writable);
  EXPECT_EQ(obstacle("global struct Line line;"), writable);
  EXPECT_EQ(obstacle("#define f(x) \\\n x\nint counter;"), writable);
  EXPECT_EQ(obstacle("global atomic_int c = ATOMIC_VAR_INIT(0);"), writable);
  EXPECT_EQ(obstacle("global int c = (0);"), writable);
  EXPECT_EQ(obstacle("global int c __attribute__((aligned(16)));"), writable);
  EXPECT_EQ(obstacle("global int a[2][sizeof(int)];"), writable);
  EXPECT_EQ(obstacle("constant int a = 1; constant int *b = &a;"), writable);
  EXPECT_EQ(obstacle("const int a = 1, *b = &a;"), writable);
}

TEST(SourceObstacles, AreWritableStructuresOutsideOfFunctions) {
  const std::string writable =
      "the program has writable variables outside of functions";
  EXPECT_EQ(obstacle("struct S { int n; }; struct S state;"), writable);
  EXPECT_EQ(obstacle("union U { int n; }; union U u;"), writable);
  EXPECT_EQ(obstacle("struct { int n; } state;"), writable);
  EXPECT_EQ(obstacle("struct S { int n; } __attribute__((packed)) s = {1};"),
            writable);
  EXPECT_EQ(obstacle("global const int *seen;"), writable);
}

TEST(SourceObstacles, AreStaticVariablesOfFunctions) {
  const std::string writable =
      "the program has writable variables outside of functions";
  EXPECT_EQ(obstacle("void f() { static global int calls; }"), writable);
  EXPECT_EQ(obstacle("void f() { if (1) { static int calls = 0; } }"),
            writable);
  EXPECT_EQ(obstacle("void f() { static constant int a[] = {1}; int b; }"), "");
}

TEST(SourceObstacles, AreNoneInDeclarationsOfTypesAndConstants) {
  for (const char *source :
       {"typedef global int *Pointer;", "struct S;",
        "struct __attribute__((packed)) S { int n; };",
        "struct S { int n; } __attribute__((packed));",
        "typedef struct S { int n; } S; struct S f(struct S s);",
        "constant sampler_t s = CLK_FILTER_NEAREST;",
        "sampler_t s = CLK_FILTER_NEAREST | CLK_ADDRESS_NONE;",
        "constant int a = (2 * 3), b[] = {(1), 2};",
        "constant char *constant names[2] = {0, 0};",
        "struct S f(int a[2]) { struct S s; s.n = a[0]; return s; }",
        "__attribute__((always_inline)) int f(int a) { int b = a; return b; }"})
    EXPECT_EQ(obstacle(source), "") << source;
}

TEST(SourceObstacles, SurviveSourcesThatEndAnywhere) {
  const std::string whole =
      "global int x[] = {1, '\\'', 2}; /* a */ \"b\\\"\" // c\n#define d \\\n";
  for (std::size_t length = 0; length <= whole.size(); ++length)
    obstacle(llvm::StringRef(whole).take_front(length));
  obstacle("}}}};");
  obstacle("\"\\");
}
