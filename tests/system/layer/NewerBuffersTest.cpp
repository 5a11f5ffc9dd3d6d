// Tests of buffers made by a list of properties, and of all other newer
// entries.

#include "tests/system/layer/ScriptedLayer.h"

using namespace corvane::test;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(NewerCalls, LeadABufferWithoutAListToTheAgent) {
  cl_int status = -1;
  EXPECT_EQ(createBuffer(nullptr, &status), buffer);
  EXPECT_EQ(status, CL_SUCCESS);
  ASSERT_THAT(script.bufferCalls, SizeIs(1));
  const LoaderScript::BufferCall &call = script.bufferCalls[0];
  EXPECT_FALSE(call.isNewer);
  EXPECT_EQ(call.flags, cl_mem_flags(CL_MEM_READ_ONLY | CL_MEM_ALLOC_HOST_PTR))
      << "the agent did not see it";
  EXPECT_EQ(call.context, context);
  EXPECT_EQ(call.size, 48u);
  EXPECT_EQ(call.hostPtr, &memory);
  EXPECT_EQ(call.errcodeRet, &status);
}

TEST_F(NewerCalls, LeadABufferWithAnEmptyListToTheAgent) {
  const cl_mem_properties none[] = {0};
  loaderScript().bufferStatus = CL_INVALID_BUFFER_SIZE;
  loaderScript().buffer = nullptr;
  cl_int status = -1;
  EXPECT_EQ(createBuffer(none, &status), nullptr);
  EXPECT_EQ(status, CL_INVALID_BUFFER_SIZE);
  ASSERT_THAT(script.bufferCalls, SizeIs(1));
  EXPECT_FALSE(script.bufferCalls[0].isNewer);
  EXPECT_EQ(script.bufferCalls[0].flags,
            cl_mem_flags(CL_MEM_READ_ONLY | CL_MEM_ALLOC_HOST_PTR));
}

TEST_F(NewerCalls, LeaveABufferWithPropertiesAlone) {
  const cl_mem_properties list[] = {0x1234, 1, 0};
  cl_int status = -1;
  EXPECT_EQ(createBuffer(list, &status), buffer);
  ASSERT_THAT(script.bufferCalls, SizeIs(1));
  const LoaderScript::BufferCall &call = script.bufferCalls[0];
  EXPECT_TRUE(call.isNewer);
  EXPECT_EQ(call.list, list);
  EXPECT_EQ(call.flags, cl_mem_flags(CL_MEM_READ_ONLY));
  EXPECT_EQ(call.context, context);
  EXPECT_EQ(call.size, 48u);
  EXPECT_EQ(call.hostPtr, &memory);
  EXPECT_EQ(call.errcodeRet, &status);
}

TEST_F(NewerCalls, LeaveAllEntriesOfOtherKindsAsTheyAre) {
  const std::vector<void *> loaderTable = scriptedTable();
  start(loaderTable);
  ASSERT_EQ(answer.count, loaderTable.size());
  for (size_t i = 0; i < loaderTable.size(); ++i)
    EXPECT_EQ(answer.entry(i) != loaderTable[i],
              i == plainBufferEntry || isUpperHook(i) ||
                  (isLowerHook(i) && !isForTheAgentAlone(i)))
        << "entry " << i;
}

TEST_F(NewerCalls, ThatTheLoaderDoesNotOfferStayMissing) {
  std::vector<void *> loaderTable = scriptedTable();
  loaderTable[queueEntry] = nullptr;
  loaderTable[bufferEntry] = nullptr;
  start(loaderTable);
  EXPECT_EQ(answer.entry(queueEntry), nullptr);
  EXPECT_EQ(answer.entry(bufferEntry), nullptr);
  EXPECT_THAT(script.queueCalls, IsEmpty());
}

TEST_F(NewerCalls, AreNotInventedForALoaderThatEndsWithTheAgentsEntries) {
  std::vector<void *> loaderTable = scriptedTable();
  loaderTable.resize(agentsEntries);
  start(loaderTable);
  EXPECT_EQ(answer.count, agentsEntries);
  for (size_t i = agentsEntries; i <= bufferEntry; ++i)
    EXPECT_EQ(answer.entry(i), nullptr) << "entry " << i;
}
