// Tests of a process that is forked while another thread changes what the layer
// remembers.

#include "tests/system/layer/ScriptedLayer.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

using namespace corvane::test;

// Plays a runtime that has no lock and remembers nothing.
static cl_command_queue CL_API_CALL giveQueue(cl_context, cl_device_id,
                                              const cl_queue_properties *,
                                              cl_int *) {
  return reinterpret_cast<cl_command_queue>(size_t{0x30});
}
static cl_int CL_API_CALL useQueue(cl_command_queue) { return CL_SUCCESS; }
static cl_int CL_API_CALL tellOfQueue(cl_command_queue, cl_command_queue_info,
                                      size_t, void *value, size_t *) {
  *static_cast<cl_command_queue_properties *>(value) =
      CL_QUEUE_PROFILING_ENABLE;
  return CL_SUCCESS;
}

template <typename Function>
static void play(std::vector<void *> &table, size_t offset, Function function) {
  table[indexOf(offset)] = reinterpret_cast<void *>(function);
}

static std::vector<void *> tableOfQueues() {
  std::vector<void *> table = scriptedTable();
  play(table, offsetof(cl_icd_dispatch, clCreateCommandQueueWithProperties),
       &giveQueue);
  play(table, offsetof(cl_icd_dispatch, clRetainCommandQueue), &useQueue);
  play(table, offsetof(cl_icd_dispatch, clReleaseCommandQueue), &useQueue);
  play(table, offsetof(cl_icd_dispatch, clGetCommandQueueInfo), &tellOfQueue);
  return table;
}

static bool callsSucceed(const cl_icd_dispatch &cl, cl_command_queue queue) {
  cl_command_queue_properties properties = 0;
  return cl.clCreateCommandQueueWithProperties(nullptr, nullptr, nullptr,
                                               nullptr) == queue &&
         cl.clRetainCommandQueue(queue) == CL_SUCCESS &&
         cl.clGetCommandQueueInfo(queue, CL_QUEUE_PROPERTIES, sizeof properties,
                                  &properties, nullptr) == CL_SUCCESS &&
         cl.clReleaseCommandQueue(queue) == CL_SUCCESS;
}

// Forks a child that makes the calls. A child that hangs is ended by a signal,
// at a time when any other child is long done.
static int exitCodeOfFork(const cl_icd_dispatch &cl, cl_command_queue queue) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(600);
    std::_Exit(callsSucceed(cl, queue) ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(NewerCalls, PassThroughInForkedChildren) {
  const cl_icd_dispatch &cl = start(tableOfQueues());
  std::atomic<bool> over{false};
  std::thread other([&] {
    while (!over)
      EXPECT_TRUE(callsSucceed(cl, queue));
  });
  for (int forks = 0; forks != 200 && !HasFailure(); ++forks)
    EXPECT_EQ(exitCodeOfFork(cl, queue), EXIT_SUCCESS) << "fork " << forks;
  over = true;
  other.join();
}
