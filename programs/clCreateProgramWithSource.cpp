// The hook of a program's creation: passes the call on. What is in the program
// shows when it is built.

#include "agent/RuntimeTable.h"
#include "programs/Hooks.h"

using namespace corvane;

// Unlocked: nothing is kept.
cl_program CL_API_CALL hooks::clCreateProgramWithSource(cl_context context,
                                                        cl_uint count,
                                                        const char **strings,
                                                        const size_t *lengths,
                                                        cl_int *errcodeRet) {
  cl_int localStatus = CL_SUCCESS;
  return runtime().clCreateProgramWithSource(
      context, count, strings, lengths, errcodeRet ? errcodeRet : &localStatus);
}
