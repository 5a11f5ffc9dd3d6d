// Writes the calls down and answers as scripted.

#include "tests/system/layer/LoaderScript.h"
#include "tests/system/LoadedLayer.h"

#include <gtest/gtest.h>

#include <cstddef>

using namespace corvane::test;

LoaderScript &corvane::test::loaderScript() {
  static LoaderScript script;
  return script;
}

static LoaderScript::QueueAnswer nextQueueAnswer(LoaderScript &script) {
  if (script.queueAnswers.empty()) {
    ADD_FAILURE() << "no test expects a queue to be created";
    return {nullptr, CL_OUT_OF_RESOURCES};
  }
  const LoaderScript::QueueAnswer answer = script.queueAnswers.front();
  if (script.queueAnswers.size() > 1)
    script.queueAnswers.erase(script.queueAnswers.begin());
  return answer;
}

static cl_command_queue CL_API_CALL createQueue(cl_context context,
                                                cl_device_id device,
                                                const cl_queue_properties *list,
                                                cl_int *errcodeRet) {
  LoaderScript &script = loaderScript();
  std::vector<cl_queue_properties> properties;
  for (const auto *next = list; next && *next; next += 2)
    properties.insert(properties.end(), {next[0], next[1]});
  script.queueCalls.push_back({context, device, list, properties, errcodeRet});
  const LoaderScript::QueueAnswer answer = nextQueueAnswer(script);
  if (errcodeRet)
    *errcodeRet = answer.status;
  return answer.queue;
}

static cl_mem answerBuffer(const LoaderScript::BufferCall &call) {
  LoaderScript &script = loaderScript();
  script.bufferCalls.push_back(call);
  if (call.errcodeRet)
    *call.errcodeRet = script.bufferStatus;
  return script.buffer;
}

static cl_mem CL_API_CALL createNewerBuffer(cl_context context,
                                            const cl_mem_properties *list,
                                            cl_mem_flags flags, size_t size,
                                            void *hostPtr, cl_int *errcodeRet) {
  return answerBuffer({context, list, flags, size, hostPtr, errcodeRet, true});
}

static cl_mem CL_API_CALL createBuffer(cl_context context, cl_mem_flags flags,
                                       size_t size, void *hostPtr,
                                       cl_int *errcodeRet) {
  return answerBuffer(
      {context, nullptr, flags, size, hostPtr, errcodeRet, false});
}

std::vector<void *> corvane::test::scriptedTable() {
  std::vector<void *> table =
      loaderTableOf(sizeof(cl_icd_dispatch) / sizeof(void *));
  const auto set = [&table](size_t offset, auto call) {
    table[indexOf(offset)] = reinterpret_cast<void *>(call);
  };
  set(offsetof(cl_icd_dispatch, clCreateBuffer), createBuffer);
  set(offsetof(cl_icd_dispatch, clCreateCommandQueueWithProperties),
      createQueue);
  set(offsetof(cl_icd_dispatch, clCreateBufferWithProperties),
      createNewerBuffer);
  return table;
}
