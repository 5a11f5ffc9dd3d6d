// Tests of which records the registry keeps, null entries included.

#include "launch/KernelRegistry.h"

#include "agent/AgentState.h"
#include "launch/KernelRecord.h"
#include "programs/ProgramRecord.h"

#include <gtest/gtest.h>

using namespace corvane;

namespace {

struct RegisterKernel : testing::Test {
  cl_program program = reinterpret_cast<cl_program>(0x1000);
  cl_kernel kernel = reinterpret_cast<cl_kernel>(0x2000);
  AgentState state;

  // A program that was built with a kernel "k" alone.
  RegisterKernel() { addGroup(findOrAddProgram(state, program), "k"); }
};

} // namespace

TEST_F(RegisterKernel, KeepsARecordWithoutVariantsOfAKernelThatHasNone) {
  registerKernel(state, program, kernel, "k");
  EXPECT_EQ(state.kernels.size(), 1U);
  const KernelRecord *record = state.kernels.find(kernel);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->name(), "k");
  EXPECT_TRUE(record->variants.empty());
}

TEST_F(RegisterKernel, KeepsANullEntryForAVariantByItsGeneratedName) {
  registerKernel(state, program, kernel, "k_coarsed_g0S4");
  EXPECT_EQ(state.kernels.size(), 1U);
  EXPECT_EQ(state.kernels.find(kernel), nullptr);
}

TEST_F(RegisterKernel, KeepsNothingOfAProgramThatIsNotKnown) {
  registerKernel(state, reinterpret_cast<cl_program>(0x3000), kernel, "k");
  EXPECT_EQ(state.kernels.size(), 0U);
}
